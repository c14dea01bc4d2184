#include "js/single_values.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "embedded_host/messages.h"
#include "rng/randstream.h"

struct tvjs_ahead {
  tvrng_stream* stream;
  std::unique_ptr<randstream> before;  // the stream where the last draw began
  tvjs_kind kind = 0;
  double lowest = 0;
  double highest = 0;
};

namespace {

tvrng_status draw(tvjs_ahead& ahead, std::size_t n, double* out) {
  switch (ahead.kind) {
    case 0:
      return tvrng_uniform(ahead.stream, n, out);
    case 1:
      // A method that makes pairs may drop the second of one at the end of a request.
      if (std::string_view(ahead.stream->stream.normal_method()) == "Polar") {
        for (std::size_t i = 0; i < n; ++i) {
          if (tvrng_status const status = tvrng_normal(ahead.stream, 1, out + i)) return status;
        }
        return TVRNG_OK;
      }
      return tvrng_normal(ahead.stream, n, out);
    default:
      return tvrng_integers(ahead.stream, ahead.lowest, ahead.highest, n, out);
  }
}

}  // namespace

tvjs_ahead* tvjs_ahead_create(tvrng_stream* stream) { return new tvjs_ahead{stream, nullptr}; }
void tvjs_ahead_destroy(tvjs_ahead* ahead) { delete ahead; }

tvrng_status tvjs_ahead_draw(tvjs_ahead* ahead, tvjs_kind kind, double lowest, double highest,
                             std::size_t n, double* out) {
  ahead->kind = kind;
  ahead->lowest = lowest;
  ahead->highest = highest;
  // Nothing of a single value can be left over.
  ahead->before = n > 1 ? ahead->stream->stream.native().clone() : nullptr;
  return draw(*ahead, n, out);
}

void tvjs_ahead_give_back(tvjs_ahead* ahead, std::size_t taken) {
  if (!ahead->before) return;
  ahead->stream->stream.native().rewind(std::move(ahead->before));
  std::array<double, 256> passed;
  while (taken > 0) {
    std::size_t const n = std::min(taken, passed.size());
    draw(*ahead, n, passed.data());
    taken -= n;
  }
}

char const* tvjs_error_hint() {
  static std::string hint;
  tvrng_error const& error = *tvrng_last_error();
  std::vector<foundation::core::except::Argument> arguments;
  for (std::size_t i = 0; i < error.argument_count; ++i) {
    tvrng_error_argument const& argument = error.arguments[i];
    if (argument.text) {
      arguments.emplace_back(argument.text);
    } else {
      arguments.emplace_back(argument.number);
    }
  }
  hint = embedded_host::renderHint(embedded_host::HostKey(error.identifier, std::move(arguments)));
  return hint.c_str();
}

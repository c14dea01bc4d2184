// The C interface over the C++ interface.

#include <algorithm>
#include <array>
#include <complex>
#include <cstring>
#include <new>
#include <span>
#include <stdexcept>
#include <string_view>

#include "c/stream_of_c.h"

namespace {

using tvmathrng::Stream;

// Kept in fixed room, so that reporting a lack of memory needs none.
struct LastError {
  std::array<char, 128> identifier{};
  std::array<char, 512> text{};
  std::array<std::array<char, 128>, 4> argumentTexts{};
  std::array<tvrng_error_argument, 4> arguments{};
  tvrng_error facts{TVRNG_OK, identifier.data(), text.data(), 0, arguments.data()};
};
thread_local LastError lastError;

template <std::size_t n>
void keep(std::array<char, n>& place, std::string_view text) noexcept {
  std::size_t const length = std::min(text.size(), n - 1);
  std::memcpy(place.data(), text.data(), length);
  place[length] = '\0';
}

tvrng_status fail(tvrng_status status, std::string_view identifier, std::string_view text,
                  std::span<tvmathrng::Error::Argument const> arguments = {}) noexcept {
  keep(lastError.identifier, identifier);
  keep(lastError.text, text);
  lastError.facts.status = status;
  lastError.facts.argument_count = std::min(arguments.size(), lastError.arguments.size());
  for (std::size_t i = 0; i < lastError.facts.argument_count; ++i) {
    tvrng_error_argument& argument = lastError.arguments[i];
    argument = {nullptr, 0};
    if (double const* const number = std::get_if<double>(&arguments[i])) {
      argument.number = *number;
    } else {
      keep(lastError.argumentTexts[i], *std::get_if<std::string>(&arguments[i]));
      argument.text = lastError.argumentTexts[i].data();
    }
  }
  return status;
}

constexpr std::string_view kNoMemory = "TALVOR:nomem";

// operation(), with what it throws turned into a status.
template <class Operation>
tvrng_status withStatus(Operation&& operation) noexcept {
  try {
    operation();
    return TVRNG_OK;
  } catch (tvmathrng::Error const& error) {
    return fail(error.identifier() == kNoMemory ? TVRNG_OUT_OF_MEMORY : TVRNG_ERROR,
                error.identifier(), error.what(), error.arguments());
  } catch (std::bad_alloc const&) {
    return fail(TVRNG_OUT_OF_MEMORY, kNoMemory, "There is not enough memory.");
  } catch (...) {
    return fail(TVRNG_ERROR, "TALVOR:RandStream:UnexpectedPluginError",
                "The generator failed in an unexpected way.");
  }
}

// The object behind a pointer that must not be null.
template <class T>
T& required(T* pointer, char const* name) {
  if (pointer) return *pointer;
  throw tvmathrng::Error("TALVOR:c:NullPointer", {name},
                         "The argument '" + std::string(name) + "' is a null pointer.");
}

template <class T>
std::span<T> output(std::size_t n, T* out) {
  if (n > 0) required(out, "out");
  return {out, n};
}

tvmathrng::Stream& streamOf(tvrng_stream* stream) { return required(stream, "stream").stream; }
tvmathrng::Stream const& streamOf(tvrng_stream const* stream) {
  return required(stream, "stream").stream;
}

template <class T>
tvrng_status uniform(tvrng_stream* stream, std::size_t n, T* out) noexcept {
  return withStatus([&] { streamOf(stream).uniform(output(n, out)); });
}

template <class T>
tvrng_status normal(tvrng_stream* stream, std::size_t n, T* out) noexcept {
  return withStatus([&] { streamOf(stream).normal(output(n, out)); });
}

template <class T>
tvrng_status complexNormal(tvrng_stream* stream, std::size_t n, T* out) noexcept {
  return normal(stream, n, reinterpret_cast<std::complex<T>*>(out));
}

template <class T>
tvrng_status integers(tvrng_stream* stream, double lowest, double highest, std::size_t n,
                      T* out) noexcept {
  return withStatus([&] {
    // Limits stay doubles, as those of the host language: beyond the type's range values saturate.
    randstream& native = streamOf(stream).native();
    tvmathrng::detail::withErrors(
        [&] { native.randiFcn(lowest, highest, output(n, out).data(), n); });
  });
}

template <class T>
tvrng_status wholeIntegers(tvrng_stream* stream, T lowest, T highest, std::size_t n, T* out) {
  return withStatus([&] { streamOf(stream).integers<T>({lowest, highest}, output(n, out)); });
}

// Where a value of the stream goes.
template <class T, class Read>
tvrng_status get(tvrng_stream const* stream, T* place, char const* name, Read read) noexcept {
  return withStatus([&] {
    required(place, name);
    *place = static_cast<T>(read(streamOf(stream)));
  });
}

}  // namespace

tvrng_error const* tvrng_last_error() { return &lastError.facts; }
char const* tvrng_error_identifier() { return lastError.identifier.data(); }
char const* tvrng_error_text() { return lastError.text.data(); }

char const* tvrng_version() { return TVRNG_VERSION_TEXT; }

std::size_t tvrng_generator_count() { return tvmathrng::generators().size(); }
char const* tvrng_generator_name(std::size_t i) {
  return i < tvrng_generator_count() ? tvmathrng::generators()[i] : nullptr;
}

tvrng_status tvrng_create(char const* generator, std::uint32_t seed, std::uint64_t index,
                          std::uint64_t count, tvrng_stream** stream) {
  return withStatus([&] {
    required(stream, "stream") = nullptr;
    using namespace tvmathrng;
    *stream = new tvrng_stream{Stream(&required(generator, "generator"), Seed{seed},
                                      StreamIndex{index}, StreamCount{count})};
  });
}
tvrng_status tvrng_at_substream(tvrng_stream const* stream, std::uint64_t k, tvrng_stream** item) {
  return withStatus([&] {
    required(item, "item") = nullptr;
    *item = new tvrng_stream{streamOf(stream).at_substream(tvmathrng::Substream{k})};
  });
}
void tvrng_destroy(tvrng_stream* stream) { delete stream; }

tvrng_status tvrng_uniform(tvrng_stream* stream, std::size_t n, double* out) {
  return uniform(stream, n, out);
}
tvrng_status tvrng_uniform_float(tvrng_stream* stream, std::size_t n, float* out) {
  return uniform(stream, n, out);
}
tvrng_status tvrng_normal(tvrng_stream* stream, std::size_t n, double* out) {
  return normal(stream, n, out);
}
tvrng_status tvrng_normal_float(tvrng_stream* stream, std::size_t n, float* out) {
  return normal(stream, n, out);
}
tvrng_status tvrng_normal_complex(tvrng_stream* stream, std::size_t n, double* out) {
  return complexNormal(stream, n, out);
}
tvrng_status tvrng_normal_complex_float(tvrng_stream* stream, std::size_t n, float* out) {
  return complexNormal(stream, n, out);
}

#define TVRNG_INTEGERS(name, type)                                                      \
  tvrng_status name(tvrng_stream* stream, double lowest, double highest, std::size_t n, \
                    type* out) {                                                        \
    return integers(stream, lowest, highest, n, out);                                   \
  }
TVRNG_INTEGERS(tvrng_integers, double)
TVRNG_INTEGERS(tvrng_integers_float, float)
TVRNG_INTEGERS(tvrng_integers_int8, std::int8_t)
TVRNG_INTEGERS(tvrng_integers_uint8, std::uint8_t)
TVRNG_INTEGERS(tvrng_integers_int16, std::int16_t)
TVRNG_INTEGERS(tvrng_integers_uint16, std::uint16_t)
TVRNG_INTEGERS(tvrng_integers_int32, std::int32_t)
TVRNG_INTEGERS(tvrng_integers_uint32, std::uint32_t)
#undef TVRNG_INTEGERS

tvrng_status tvrng_integers_int64(tvrng_stream* stream, std::int64_t lowest, std::int64_t highest,
                                  std::size_t n, std::int64_t* out) {
  return wholeIntegers(stream, lowest, highest, n, out);
}
tvrng_status tvrng_integers_uint64(tvrng_stream* stream, std::uint64_t lowest,
                                   std::uint64_t highest, std::size_t n, std::uint64_t* out) {
  return wholeIntegers(stream, lowest, highest, n, out);
}

tvrng_status tvrng_permutation(tvrng_stream* stream, std::size_t n, double* out) {
  return withStatus([&] { streamOf(stream).permutation(output(n, out)); });
}
tvrng_status tvrng_sample(tvrng_stream* stream, std::uint64_t population, std::size_t n,
                          double* out) {
  return withStatus(
      [&] { streamOf(stream).sample(output(n, out), tvmathrng::Population{population}); });
}

tvrng_status tvrng_reset(tvrng_stream* stream, std::uint32_t seed) {
  return withStatus([&] { streamOf(stream).reset(tvmathrng::Seed{seed}); });
}
tvrng_status tvrng_set_substream(tvrng_stream* stream, std::uint64_t k) {
  return withStatus([&] { streamOf(stream).set_substream(tvmathrng::Substream{k}); });
}
tvrng_status tvrng_get_substream(tvrng_stream const* stream, std::uint64_t* k) {
  return get(stream, k, "k", [](Stream const& s) { return s.substream().value(); });
}
tvrng_status tvrng_advance(tvrng_stream* stream, std::uint64_t n) {
  return withStatus([&] { streamOf(stream).advance(n); });
}

tvrng_status tvrng_snapshot_size(tvrng_stream const* stream, std::size_t* size) {
  return withStatus([&] { required(size, "size") = streamOf(stream).snapshot().size(); });
}
tvrng_status tvrng_snapshot(tvrng_stream const* stream, std::size_t size, char* text) {
  return withStatus([&] {
    std::string const snapshot = streamOf(stream).snapshot();
    if (size != snapshot.size()) {
      throw tvmathrng::Error("TALVOR:c:SnapshotSize", {static_cast<double>(snapshot.size())},
                             "The snapshot takes " + std::to_string(snapshot.size()) +
                                 " bytes, as tvrng_snapshot_size tells.");
    }
    snapshot.copy(&required(text, "text"), size);
  });
}
tvrng_status tvrng_from_snapshot(std::size_t size, char const* text, tvrng_stream** stream) {
  return withStatus([&] {
    required(stream, "stream") = nullptr;
    std::string_view const snapshot(&required(text, "text"), size);
    *stream = new tvrng_stream{tvmathrng::Stream::from_snapshot(snapshot)};
  });
}
tvrng_status tvrng_restore(tvrng_stream* stream, std::size_t size, char const* text) {
  return withStatus(
      [&] { streamOf(stream).restore(std::string_view(&required(text, "text"), size)); });
}

tvrng_status tvrng_set_normal_method(tvrng_stream* stream, char const* name) {
  return withStatus([&] { streamOf(stream).set_normal_method(&required(name, "name")); });
}
tvrng_status tvrng_set_antithetic(tvrng_stream* stream, int on) {
  return withStatus([&] { streamOf(stream).set_antithetic(on != 0); });
}
tvrng_status tvrng_set_full_precision(tvrng_stream* stream, int on) {
  return withStatus([&] { streamOf(stream).set_full_precision(on != 0); });
}

tvrng_status tvrng_get_generator(tvrng_stream const* stream, char const** name) {
  return get(stream, name, "name", [](Stream const& s) { return s.native().generatorType(); });
}
tvrng_status tvrng_get_seed(tvrng_stream const* stream, std::uint32_t* seed) {
  return get(stream, seed, "seed", [](Stream const& s) { return s.seed().value(); });
}
tvrng_status tvrng_get_index(tvrng_stream const* stream, std::uint64_t* index) {
  return get(stream, index, "index", [](Stream const& s) { return s.index().value(); });
}
tvrng_status tvrng_get_count(tvrng_stream const* stream, std::uint64_t* count) {
  return get(stream, count, "count", [](Stream const& s) { return s.count().value(); });
}
tvrng_status tvrng_get_normal_method(tvrng_stream const* stream, char const** name) {
  return get(stream, name, "name", [](Stream const& s) { return s.native().getRandnAlg(); });
}
tvrng_status tvrng_get_antithetic(tvrng_stream const* stream, int* on) {
  return get(stream, on, "on", [](Stream const& s) { return s.antithetic(); });
}
tvrng_status tvrng_get_full_precision(tvrng_stream const* stream, int* on) {
  return get(stream, on, "on", [](Stream const& s) { return s.full_precision(); });
}

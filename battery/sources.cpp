#include "battery/sources.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "battery/textbook.h"
#include "embedded_host/vm_context.h"
#include "rng/create_stream.h"
#include "rng/mr_functions.h"
#include "runtime/vm.h"
#include "tfl_rng/generator_catalogue.h"

namespace battery {

namespace {

using Fill = std::function<void(std::span<double>)>;

using tfl_rng::Generator;

// Distances of the draws that the recurrence ties together, from 0; none where it ties neighbours.
std::vector<std::size_t> offsetsOf(Generator const& generator, bool full) {
  auto const [kind, near, far] = generator.traits.ties;
  if (kind == tfl_rng::Ties::Kind::recent) return {};
  int const steps = full ? generator.traits.stepsADraw : 1;
  return {0, static_cast<std::size_t>((far - near) / steps), static_cast<std::size_t>(far / steps)};
}

int bitsOf(Generator const& generator, bool full) {
  return full ? generator.traits.bits : generator.traits.reducedBits;
}

Fill fillFrom(std::shared_ptr<randstream> stream) {
  return [stream = std::move(stream)](std::span<double> out) {
    stream->randuFcn(out.data(), out.size());
  };
}

Source generatorSource(Generator const& generator, bool full) {
  return {generator.name + std::string(full ? "" : ", reduced precision"), bitsOf(generator, full),
          offsetsOf(generator, full), [&generator, full](std::uint32_t seed) {
            std::shared_ptr<randstream> const stream = rng::createStream(generator.name, seed);
            stream->setFullPrecision(full);
            return fillFrom(stream);
          }};
}

// A virtual machine in legacy mode.
class LegacyVm {
 public:
  LegacyVm(char const* keyword, std::uint32_t seed) : inside_(vm_.context()) {
    vm_.context().useSettingsFile({});
    vm_.context().setWarningSink([](auto const&, std::string const&) {});
    vm_.call("rand", {txCreateText(keyword).get(), txCreateDouble(seed).get()}, 0);
  }
  void fill(std::span<double> out) const { mrGetGlobalStream()->randuFcn(out.data(), out.size()); }

 private:
  runtime::Vm vm_;
  embedded_host::EnterVm inside_;
};

Source legacySource(tfl_rng::LegacyKeyword const& row) {
  return {std::string("legacy '") + row.keyword + "'", bitsOf(*row.generator, row.fullPrecision),
          offsetsOf(*row.generator, row.fullPrecision),
          [keyword = row.keyword](std::uint32_t seed) -> Fill {
            auto vm = std::make_shared<LegacyVm>(keyword, seed);
            return [vm = std::move(vm)](std::span<double> out) { vm->fill(out); };
          }};
}

// The generators of a verdict, in each precision that they have, and those of the legacy set.
std::vector<Source> sourcesOf(tfl_rng::Verdict verdict) {
  std::vector<Source> sources;
  for (Generator const& generator : tfl_rng::generators()) {
    if (generator.traits.battery != verdict) continue;
    sources.push_back(generatorSource(generator, true));
    if (generator.hasTwoPrecisions()) sources.push_back(generatorSource(generator, false));
  }
  for (tfl_rng::LegacyKeyword const& row : tfl_rng::kLegacyUniforms)
    if (row.generator->traits.battery == verdict) sources.push_back(legacySource(row));
  return sources;
}

constexpr std::size_t kInterleaved = 4;
using Streams = std::array<std::unique_ptr<randstream>, kInterleaved>;

Fill inTurn(std::shared_ptr<Streams> streams) {
  return [streams = std::move(streams)](std::span<double> out) {
    std::vector<double> one(out.size() / kInterleaved);
    for (std::size_t k = 0; k < kInterleaved; ++k) {
      (*streams)[k]->randuFcn(one.data(), one.size());
      for (std::size_t i = 0; i < one.size(); ++i) out[i * kInterleaved + k] = one[i];
    }
  };
}

}  // namespace

std::vector<Source> generatorSources() { return sourcesOf(tfl_rng::Verdict::passes); }

std::vector<Source> interleavedSources() {
  std::vector<Source> sources;
  for (Generator const& generator : tfl_rng::generators()) {
    if (!generator.hasSubstreams()) continue;
    char const* const name = generator.name;
    auto const add = [&](char const* what, auto makeNeighbour) {
      sources.push_back({name + std::string(", 4 ") + what + " in turn",
                         generator.traits.bits,
                         {},
                         [makeNeighbour](std::uint32_t seed) {
                           auto streams = std::make_shared<Streams>();
                           for (std::size_t k = 0; k < kInterleaved; ++k)
                             (*streams)[k] = makeNeighbour(seed, k);
                           return inTurn(std::move(streams));
                         }});
    };
    add("streams", [name](std::uint32_t seed, std::size_t k) {
      return rng::createStream(name, seed, k, kInterleaved);
    });
    add("substreams", [name](std::uint32_t seed, std::size_t k) {
      std::unique_ptr<randstream> stream = rng::createStream(name, seed);
      stream->setSubstream(k);
      return stream;
    });
  }
  return sources;
}

std::vector<Source> weakSources() {
  std::vector<Source> sources = sourcesOf(tfl_rng::Verdict::fails);
  std::ranges::move(textbookSources(), std::back_inserter(sources));
  return sources;
}

}  // namespace battery

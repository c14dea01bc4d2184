#include "battery/sources.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include "battery/textbook.h"
#include "embedded_host/vm_context.h"
#include "rng/mr_functions.h"
#include "runtime/vm.h"

namespace battery {

namespace {

using Fill = std::function<void(std::span<double>)>;

enum class Precision { full, reduced };

struct Registered {
  std::string_view name;
  bool substreams;
};
enum Family { Single, Substreams };
constexpr Registered kRegistered[] = {
#define TFL_GENERATOR(name, core, otherSpelling, family, ...) {#name, family == Substreams},
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR
};

// What is particular about a generator in one precision.
struct Facts {
  std::string_view generator;
  Precision precision;
  int bits;
  std::vector<std::size_t> offsets;
};

// A generator without a row has 52 bits in full precision, which it may keep to.
constexpr int kUsualBits = 52;
// In full precision a draw of mt19937ar is two words, which halves its lags of 397 and 624. The
// lowest of dsfmt19937's 52 bits is always set. mrg32k3a's one step is 32 bits.
std::vector<Facts> const kFacts = {
    {"mt19937ar", Precision::full, 53, {0, 114, 312}},
    {"mt19937ar", Precision::reduced, 32, {0, 227, 624}},
    {"dsfmt19937", Precision::full, 51, {0, 148, 382}},
    {"mlfg6331_64", Precision::full, 52, {0, 32, 63}},
    {"mrg32k3a", Precision::full, 53, {}},
    {"mrg32k3a", Precision::reduced, 32, {}},
    {"mcg16807", Precision::reduced, 31, {}},
    {"shr3cong", Precision::reduced, 32, {}},
    {"swb2712", Precision::full, 53, {0, 15, 27}},
};

// The minimal standard generator is too weak to pass.
constexpr std::string_view kWeak = "mcg16807";

Fill fillFrom(std::shared_ptr<randstream> stream) {
  return [stream = std::move(stream)](std::span<double> out) {
    stream->randuFcn(out.data(), out.size());
  };
}

Source generatorSource(Facts const& facts) {
  bool const full = facts.precision == Precision::full;
  std::string const generator(facts.generator);
  return {generator + (full ? "" : ", reduced precision"), facts.bits, facts.offsets,
          [generator, full](std::uint32_t seed) {
            std::shared_ptr<randstream> const stream = makeStream(generator.c_str(), seed);
            stream->setFullPrecision(full);
            return fillFrom(stream);
          }};
}

// A source of full precision, and one of reduced precision where a row tells of it.
void appendSources(std::vector<Source>& sources, std::string_view generator) {
  Facts usual{generator, Precision::full, kUsualBits, {}};
  for (Facts const& row : kFacts)
    if (row.generator == generator && row.precision == Precision::full) usual = row;
  sources.push_back(generatorSource(usual));
  for (Facts const& row : kFacts)
    if (row.generator == generator && row.precision == Precision::reduced)
      sources.push_back(generatorSource(row));
}

// A virtual machine in legacy mode.
class LegacyVm {
 public:
  LegacyVm(char const* keyword, std::uint32_t seed) : inside_(vm_.context()) {
    vm_.context().setWarningSink([](auto const&, std::string const&) {});
    vm_.call("rand", {txCreateText(keyword).get(), txCreateDouble(seed).get()}, 0);
  }
  void fill(std::span<double> out) const { mrGetGlobalStream()->randuFcn(out.data(), out.size()); }

 private:
  runtime::Vm vm_;
  embedded_host::EnterVm inside_;
};

Source legacySource(char const* keyword, int bits, std::vector<std::size_t> offsets) {
  return {std::string("legacy '") + keyword + "'", bits, std::move(offsets),
          [keyword](std::uint32_t seed) -> Fill {
            auto vm = std::make_shared<LegacyVm>(keyword, seed);
            return [vm = std::move(vm)](std::span<double> out) { vm->fill(out); };
          }};
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

std::unique_ptr<randstream> makeStream(char const* generator, std::uint32_t seed,
                                       std::size_t streamIndex) {
  return std::unique_ptr<randstream>(
      mrCreateRNGStream(generator, streamIndex + 1, streamIndex, seed, nullptr, 0));
}

std::vector<Source> generatorSources() {
  std::vector<Source> sources;
  for (Registered const& registered : kRegistered)
    if (registered.name != kWeak) appendSources(sources, registered.name);
  sources.push_back(legacySource("twister", 53, {0, 114, 312}));
  sources.push_back(legacySource("state", 53, {0, 15, 27}));
  return sources;
}

std::vector<Source> interleavedSources() {
  std::vector<Source> sources;
  for (Registered const& registered : kRegistered) {
    if (!registered.substreams) continue;
    std::string const generator(registered.name);
    sources.push_back(
        {generator + ", 4 streams in turn", kUsualBits, {}, [generator](std::uint32_t seed) {
           auto streams = std::make_shared<Streams>();
           for (std::size_t k = 0; k < kInterleaved; ++k)
             (*streams)[k] = makeStream(generator.c_str(), seed, k);
           return inTurn(std::move(streams));
         }});
    sources.push_back(
        {generator + ", 4 substreams in turn", kUsualBits, {}, [generator](std::uint32_t seed) {
           auto streams = std::make_shared<Streams>();
           for (std::size_t k = 0; k < kInterleaved; ++k) {
             (*streams)[k] = makeStream(generator.c_str(), seed);
             (*streams)[k]->setSubstream(k);
           }
           return inTurn(std::move(streams));
         }});
  }
  return sources;
}

std::vector<Source> weakSources() {
  std::vector<Source> sources;
  appendSources(sources, kWeak);
  sources.push_back(legacySource("seed", 31, {}));
  std::ranges::move(textbookSources(), std::back_inserter(sources));
  return sources;
}

}  // namespace battery

#include "battery/sources.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "battery/textbook.h"
#include "embedded_host/vm_context.h"
#include "rng/mr_functions.h"
#include "runtime/vm.h"

namespace battery {

namespace {

using Fill = std::function<void(std::span<double>)>;

enum class Precision { full, reduced };

struct GeneratorRow {
  char const* generator;
  Precision precision;
  int bits;
  std::vector<std::size_t> offsets;
};

// In full precision a draw of mt19937ar is two words, which halves its lags of 397 and 624. The
// lowest of dsfmt19937's 52 bits is always set. mrg32k3a's one step is 32 bits. Two words of 16807,
// of 31 bits each, lie on a lattice.
std::vector<GeneratorRow> const kGenerators = {
    {"mt19937ar", Precision::full, 53, {0, 114, 312}},
    {"mt19937ar", Precision::reduced, 32, {0, 227, 624}},
    {"dsfmt19937", Precision::full, 51, {0, 148, 382}},
    {"mrg32k3a", Precision::full, 53, {}},
    {"mrg32k3a", Precision::reduced, 32, {}},
    {"mlfg6331_64", Precision::full, 52, {0, 32, 63}},
    {"philox4x32_10", Precision::full, 52, {}},
    {"threefry4x64_20", Precision::full, 52, {}},
    {"shr3cong", Precision::full, 52, {}},
    {"shr3cong", Precision::reduced, 32, {}},
    {"swb2712", Precision::full, 53, {0, 15, 27}},
};

Fill fillFrom(std::shared_ptr<randstream> stream) {
  return [stream = std::move(stream)](std::span<double> out) {
    stream->randuFcn(out.data(), out.size());
  };
}

Source generatorSource(GeneratorRow const& row) {
  bool const full = row.precision == Precision::full;
  return {row.generator + std::string(full ? "" : ", reduced precision"), row.bits, row.offsets,
          [generator = row.generator, full](std::uint32_t seed) {
            std::shared_ptr<randstream> const stream = makeStream(generator, seed);
            stream->setFullPrecision(full);
            return fillFrom(stream);
          }};
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
  for (GeneratorRow const& row : kGenerators) sources.push_back(generatorSource(row));
  sources.push_back(legacySource("twister", 53, {0, 114, 312}));
  sources.push_back(legacySource("state", 53, {0, 15, 27}));
  return sources;
}

std::vector<Source> interleavedSources() {
  std::vector<Source> sources;
  for (char const* const generator :
       {"mrg32k3a", "mlfg6331_64", "philox4x32_10", "threefry4x64_20"}) {
    sources.push_back(
        {std::string(generator) + ", 4 streams in turn", 52, {}, [generator](std::uint32_t seed) {
           auto streams = std::make_shared<Streams>();
           for (std::size_t k = 0; k < kInterleaved; ++k)
             (*streams)[k] = makeStream(generator, seed, k);
           return inTurn(std::move(streams));
         }});
    sources.push_back({std::string(generator) + ", 4 substreams in turn",
                       52,
                       {},
                       [generator](std::uint32_t seed) {
                         auto streams = std::make_shared<Streams>();
                         for (std::size_t k = 0; k < kInterleaved; ++k) {
                           (*streams)[k] = makeStream(generator, seed);
                           (*streams)[k]->setSubstream(k);
                         }
                         return inTurn(std::move(streams));
                       }});
  }
  return sources;
}

std::vector<Source> weakSources() {
  std::vector<Source> sources = {generatorSource({"mcg16807", Precision::full, 52, {}}),
                                 generatorSource({"mcg16807", Precision::reduced, 31, {}}),
                                 legacySource("seed", 31, {})};
  std::ranges::move(textbookSources(), std::back_inserter(sources));
  return sources;
}

}  // namespace battery

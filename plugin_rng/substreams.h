#pragma once

// The class templates over cores with streams, substreams and jump-ahead.

#include <stdexcept>

#include "plugin_rng/parallel_fill.h"
#include "plugin_rng/plugin_rng.h"
#include "tfl_rng/core_rng.h"
#include "tfl_rng/normal_quantile.h"

namespace plugin_rng {

// Raises "TALVOR:RandStream:<generator>:SubstreamsIndexOutOfRange". Instantiated for every core of
// the family Substreams.
template <class Core>
[[noreturn]] TV_EXPORT void OutOfRangeError();

// Raises the error of a core that cannot compute the state it was to jump to, where the generator
// has an identifier for it.
template <class Core>
[[noreturn]] void cannotJump() {
  throw std::runtime_error("the generator cannot jump ahead");
}
template <>
[[noreturn]] inline void cannotJump<tfl_rng::mlfg6331_64>() {
  errors::raise(TALVOR::RandStream::mlfg6331_64::UnableToComputeALFGState());
}

// Requests of more draws than `serialLimit` are filled in parallel.
struct Fills {
  std::size_t serialLimit = 1024;
  Split normals = kUniformSplit;
};
template <class Core>
inline constexpr Fills kFills = {};
// A jump costs as much as some ten thousand draws.
template <>
inline constexpr Fills kFills<tfl_rng::mlfg6331_64> = {.serialLimit = 131072};
// A normal costs several times a uniform, so that shorter leaves pay, and more so the more idle
// threads there are.
template <>
inline constexpr Fills kFills<tfl_rng::philox4x32> = {.normals = {2048, true}};

// A generator with streams and substreams.
template <class Core, IPluginRNG::pluginStateClassID id = kStateClass<Core>>
class PluginRNGSubstreams : public PluginRNG<Core, id>, public IPluginRNGSubstreams {
 public:
  explicit PluginRNGSubstreams(boost::shared_ptr<Core> generator)
      : PluginRNG<Core, id>(std::move(generator)),
        numStreams(this->core->getNumStreams()),
        log2StreamLen(this->core->getLog2StreamLen()),
        numSubstreams(this->core->getNumSubstreams()),
        log2SubstreamLen(this->core->getLog2SubstreamLen()) {}

  void randu(double* out, std::size_t n) override {
    fill(out, n, kUniformSplit, [](double*, std::size_t) {});
  }

  int checkNumStreams(std::uint64_t count) const override {
    return count <= numStreams && this->core->streamIndex() < numStreams ? tfl_rng::ok
                                                                         : tfl_rng::tooManyStreams;
  }
  void setSubstream(std::uint64_t index) override {
    const auto status = this->core->setSubstream(index);
    if (status == tfl_rng::indexOutOfRange) OutOfRangeError<Core>();
    if (status != tfl_rng::ok) cannotJump<Core>();
  }
  std::uint64_t getSubstream() const override { return this->core->substream(); }
  void advance(std::uint64_t n) override { move(*this->core, n); }
  std::pair<std::uint64_t, std::uint64_t> getStreamLimits() const override {
    return {numStreams, log2StreamLen};
  }
  std::pair<std::uint64_t, std::uint64_t> getSubstreamLimits() const override {
    return {numSubstreams, log2SubstreamLen};
  }

 protected:
  // Fills out[0, n) with uniforms, each part of which then passes through `finish`.
  template <class Finish>
  void fill(double* out, std::size_t n, Split split, Finish finish) {
    if (n > kFills<Core>.serialLimit) {
      fillInParallel(
          *this->core, out, n, split, [](Core& copy, std::size_t by) { move(copy, by); }, finish);
    } else {
      this->core->randu(out, n);
      finish(out, n);
    }
  }

  std::uint64_t numStreams;
  std::uint64_t log2StreamLen;
  std::uint64_t numSubstreams;
  std::uint64_t log2SubstreamLen;

 private:
  static void move(Core& generator, std::uint64_t n) {
    if (generator.advance(n) != tfl_rng::ok) cannotJump<Core>();
  }
};

// The same with native normals by inversion: each normal is the quantile of one uniform.
template <class Core, IPluginRNG::pluginStateClassID id = kStateClass<Core>>
class PluginRNGInversion : public PluginRNGSubstreams<Core, id>, public IPluginRNGRandn {
 public:
  using PluginRNGSubstreams<Core, id>::PluginRNGSubstreams;

  bool setRandnAlg(char const* algorithm) override {
    return ascii_case::equal(algorithm ? algorithm : "", getDefaultRandnAlg());
  }
  char const* getDefaultRandnAlg() const override {
    return tfl_rng::kGeneratorOf<Core>->nativeNormals;
  }
  void randn(double* out, std::size_t n) override {
    this->fill(out, n, kFills<Core>.normals, tfl_rng::normalQuantileInPlace);
  }
};

}  // namespace plugin_rng

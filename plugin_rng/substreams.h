#pragma once

// The class templates over cores with streams, substreams and jump-ahead.

#include <memory>
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

// A generator with streams and substreams. Requests of more than `serialLimit` draws are filled in
// parallel.
template <class Core, IPluginRNG::pluginStateClassID id = kStateClass<Core>>
class PluginRNGSubstreams : public PluginRNG<Core, id>, public IPluginRNGSubstreams {
 public:
  PluginRNGSubstreams(boost::shared_ptr<Core> generator, std::size_t serialLimit)
      : PluginRNG<Core, id>(std::move(generator)),
        numStreams(this->core->getNumStreams()),
        log2StreamLen(this->core->getLog2StreamLen()),
        numSubstreams(this->core->getNumSubstreams()),
        log2SubstreamLen(this->core->getLog2SubstreamLen()),
        serialLimit_(serialLimit) {}

  void randu(double* out, std::size_t n) override {
    fill(out, n, kUniformSplit, [](double*, std::size_t) {});
  }

  int checkNumStreams(std::size_t count) const override {
    return count <= numStreams && this->core->streamIndex() < numStreams ? tfl_rng::ok
                                                                         : tfl_rng::tooManyStreams;
  }
  void setSubstream(std::size_t index) override {
    const auto status = this->core->setSubstream(index);
    if (status == tfl_rng::indexOutOfRange) OutOfRangeError<Core>();
    if (status != tfl_rng::ok) cannotJump();
  }
  std::size_t getSubstream() const override { return this->core->substream(); }
  void advance(std::size_t n) override { move(*this->core, n); }
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
    if (n > serialLimit_) {
      fillInParallel(
          *this->core, out, n, split, [this](Core& copy, std::size_t by) { move(copy, by); },
          finish);
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
  // Raises the error of a core that cannot compute the state it was to jump to, where the generator
  // has an identifier for it.
  [[noreturn]] virtual void cannotJump() const {
    throw std::runtime_error("the generator cannot jump ahead");
  }
  void move(Core& generator, std::size_t n) const {
    if (generator.advance(n) != tfl_rng::ok) cannotJump();
  }

  std::size_t serialLimit_;
};

// The same with native normals by inversion: each normal is the quantile of one uniform.
template <class Core, IPluginRNG::pluginStateClassID id = kStateClass<Core>>
class PluginRNGInversion : public PluginRNGSubstreams<Core, id>, public IPluginRNGRandn {
 public:
  PluginRNGInversion(boost::shared_ptr<Core> generator, std::size_t serialLimit, Split normalSplit)
      : PluginRNGSubstreams<Core, id>(std::move(generator), serialLimit),
        normalSplit_(normalSplit) {}

  bool setRandnAlg(char const* algorithm) override {
    return ascii_case::equal(algorithm ? algorithm : "", getDefaultRandnAlg());
  }
  char const* getDefaultRandnAlg() const override {
    return tfl_rng::kGeneratorOf<Core>->nativeNormals;
  }
  void randn(double* out, std::size_t n) override {
    this->fill(out, n, normalSplit_, tfl_rng::normalQuantileInPlace);
  }

 private:
  Split normalSplit_;
};

// The factory of a generator with streams: its checks in order, with the core built between them
// because it knows the limits. The index is held against the generator's limit only, not against
// the number of streams asked for.
template <class Plugin, class Core>
IPluginRNG* makeWithStreams(std::size_t numStreams, std::size_t streamIndex, std::uint32_t seed,
                            std::size_t nParams) {
  using Errors = errors::GeneratorErrors<Core>;
  if (nParams != 0) errors::raise(typename Errors::InvalidParameter());
  auto plugin =
      std::make_unique<Own<Plugin>>(boost::shared_ptr<Core>(new Core(seed, streamIndex, true)));
  if (plugin->checkNumStreams(numStreams) != tfl_rng::ok) {
    errors::raise(typename Errors::TooManyStreams());
  }
  return plugin.release();
}

}  // namespace plugin_rng

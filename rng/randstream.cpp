#include "rng/randstream.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <tuple>

#include "errors/keys.h"
#include "host/allocator.h"
#include "host/ascii_case.h"
#include "host/strings.h"
#include "plugin_rng/own_plugin.h"
#include "rng/chunks.h"
#include "rng/guard.h"
#include "rng/in_use.h"
#include "rng/uniform_source.h"
#include "rng/whole_draw.h"

namespace set = TALVOR::RandStream::set;

randstream::randstream(char const* generatorType, unsigned int seed, plugin_rng::IPluginRNG* plugin,
                       std::uint64_t numStreams, std::uint64_t streamIndex)
    : seed_(seed),
      numStreams_(numStreams),
      streamIndex_(streamIndex),
      plugin_(plugin),
      normalView_(dynamic_cast<plugin_rng::IPluginRNGRandn*>(plugin)),
      substreamView_(dynamic_cast<plugin_rng::IPluginRNGSubstreams*>(plugin)),
      jumpView_(substreamView_),
      ownView_(dynamic_cast<plugin_rng::IOwnPluginRNG*>(plugin)) {
  utStrncpy(generatorType_, generatorType, kNameSize - 1);
  char const* algorithm = "Ziggurat";
  if (normalView_) algorithm = guarded([&] { return normalView_->getDefaultRandnAlg(); });
  try {
    setRandnAlg(algorithm);
  } catch (...) {
    errors::raise(set::CantInitRandnAlg(algorithm, generatorType));
  }
}

randstream::~randstream() {
  const InUse inUse(*this);
  if (plugin_) plugin_->destroy();
}

constinit thread_local std::uint64_t drawsInThread = 0;

std::uint64_t randstream::drawnInThread() noexcept { return drawsInThread; }

#ifndef NDEBUG
void randstream::OneThread::endProgram(randstream const& stream) noexcept {
  std::fprintf(
      stderr,
      "A %s stream (seed %u) is used by two threads at once, so that its numbers repeat or "
      "are lost. Give each thread a stream of its own: the same seed with another stream "
      "index or substream.\n",
      stream.generatorType(), stream.seed());
  std::abort();
}
#endif

plugin_rng::IPluginRNG& randstream::requiredPlugin() const {
  if (!plugin_) throw std::logic_error("the stream has no generator");
  return *plugin_;
}

void* randstream::operator new(std::size_t bytes) { return txMallocEx(bytes); }
void randstream::operator delete(void* memory) noexcept { txFreeEx(memory); }

void randstream::reset(unsigned int seed) {
  const InUse inUse(*this);
  seed_ = seed;
  guarded([&] { requiredPlugin().reset(seed); });
  pendingNormalValid_ = false;
  ++counts_.moves;
}

void randstream::setSubstream(std::uint64_t k) {
  const InUse inUse(*this);
  if (substreamView_) {
    guarded([&] { substreamView_->setSubstream(k); });
    ++counts_.moves;
  } else if (k != 0) {
    errors::raise(set::SubstreamsNotSupported(generatorType_));
  }
}

std::uint64_t randstream::getSubstream() const {
  const InUse inUse(*this);
  return substreamView_ ? guarded([&] { return substreamView_->getSubstream(); }) : 0;
}

void randstream::advance(std::uint64_t n) {
  const InUse inUse(*this);
  guarded([&] {
    if (jumpView_ || ownView_) {
      jumpView_ ? jumpView_->advance(n) : ownView_->jump(n);
      counts_.passedOver += n;
      counts_.latest = drawsInThread += n;
      return;
    }
    requiredPlugin();
    const WholeDraw whole(*this, n);
    double discarded[kChunk];
    forEachChunk(n, kChunk,
                 [&](std::size_t, std::size_t len) { uniforms().randu(discarded, len); });
  });
}

void randstream::setFullPrecision(bool on) {
  const InUse inUse(*this);
  guarded([&] { requiredPlugin().setFullPrecision(on); });
  fullPrecision_ = on;
}

void randstream::setRandnAlg(char const* name) {
  const InUse inUse(*this);
  struct Method {
    char const* name;
    NormalGenerator generator;
  };
  static constexpr Method kMethods[] = {
      {"ziggurat", &randstream::randnZiggurat},
      {"polar", &randstream::randnPolar},
      {"inversion", &randstream::randnInversion},
  };
  if (!name) name = "";

  const bool native =
      normalView_ ? guarded([&] { return normalView_->setRandnAlg(name); }) : nativeNormals_;
  NormalGenerator generator = normalGenerator_;
  if (!native) {
    Method const* found = nullptr;
    for (Method const& method : kMethods)
      if (!found && ascii_case::equal(name, method.name)) found = &method;
    if (!found) errors::raise(set::UnknownRandnAlg(name));
    generator = found->generator;
  }

  nativeNormals_ = native;
  normalGenerator_ = generator;
  if (name != randnAlg_) utStrncpy(randnAlg_, name, kNameSize - 1);
  randnAlg_[0] = ascii_case::upper(randnAlg_[0]);
}

void randstream::getStreamParameters(streamParamsStruct* p) const {
  const InUse inUse(*this);
  guarded([&] {
    auto const& streams = dynamic_cast<plugin_rng::IPluginRNGSubstreams const&>(requiredPlugin());
    streamParamsStruct result{};
    std::tie(result.numStreams, result.log2StreamLen) = streams.getStreamLimits();
    if (substreamView_)
      std::tie(result.numSubstreams, result.log2SubstreamLen) =
          substreamView_->getSubstreamLimits();
    else
      result.log2SubstreamLen = result.log2StreamLen;
    *p = result;
  });
}

#include "shell/counting_view.h"

#include <utility>

namespace shell {

namespace {

using plugin_rng::IPluginRNG;
using plugin_rng::IPluginRNGRandn;
using plugin_rng::IPluginRNGSubstreams;
using SharedRecord = std::shared_ptr<CountedStream::Record>;

class View : public virtual IPluginRNG {
 public:
  View(IPluginRNG& inner, SharedRecord record) : inner_(inner), record_(std::move(record)) {}

  void randu(double* out, std::size_t n) override {
    inner_.randu(out, n);
    counts().uniforms += n;
  }
  void reset(std::uint32_t seed) override {
    inner_.reset(seed);
    counts().moved = true;
  }
  std::size_t getNumStateComponents() const override { return inner_.getNumStateComponents(); }
  void getStateComponentTypes(std::size_t n, txClassID* classes,
                              std::size_t* lengths) const override {
    inner_.getStateComponentTypes(n, classes, lengths);
  }
  void getStateComponents(void* const* buffers) const override {
    inner_.getStateComponents(buffers);
  }
  void setStateComponents(void const* const* buffers) override {
    inner_.setStateComponents(buffers);
    counts().moved = true;
  }
  void setFullPrecision(bool on) override { inner_.setFullPrecision(on); }
  // The stream ends: its own generator ends with it.
  void destroy() override {
    record_->alive = false;
    inner_.destroy();
    delete this;
  }

 protected:
  DrawCounts& counts() const { return record_->counts; }

 private:
  IPluginRNG& inner_;
  SharedRecord record_;
};

template <class Base>
class WithNormals : public Base, public IPluginRNGRandn {
 public:
  WithNormals(IPluginRNG& inner, SharedRecord record)
      : Base(inner, std::move(record)), normals_(dynamic_cast<IPluginRNGRandn&>(inner)) {}

  bool setRandnAlg(char const* algorithm) override { return normals_.setRandnAlg(algorithm); }
  char const* getDefaultRandnAlg() const override { return normals_.getDefaultRandnAlg(); }
  void randn(double* out, std::size_t n) override {
    normals_.randn(out, n);
    this->counts().normals += n;
  }

 private:
  IPluginRNGRandn& normals_;
};

template <class Base>
class WithSubstreams : public Base, public IPluginRNGSubstreams {
 public:
  WithSubstreams(IPluginRNG& inner, SharedRecord record)
      : Base(inner, std::move(record)), streams_(dynamic_cast<IPluginRNGSubstreams&>(inner)) {}

  int checkNumStreams(std::size_t n) const override { return streams_.checkNumStreams(n); }
  void setSubstream(std::size_t index) override {
    streams_.setSubstream(index);
    this->counts().moved = true;
  }
  std::size_t getSubstream() const override { return streams_.getSubstream(); }
  void advance(std::size_t n) override {
    streams_.advance(n);
    this->counts().passedOver += n;
  }
  std::pair<std::uint64_t, std::uint64_t> getStreamLimits() const override {
    return streams_.getStreamLimits();
  }
  std::pair<std::uint64_t, std::uint64_t> getSubstreamLimits() const override {
    return streams_.getSubstreamLimits();
  }

 private:
  IPluginRNGSubstreams& streams_;
};

// A view with the extensions of the generator itself.
IPluginRNG* makeView(IPluginRNG& inner, SharedRecord const& record) {
  bool const normals = dynamic_cast<IPluginRNGRandn*>(&inner) != nullptr;
  bool const substreams = dynamic_cast<IPluginRNGSubstreams*>(&inner) != nullptr;
  if (normals && substreams) return new WithSubstreams<WithNormals<View>>(inner, record);
  if (normals) return new WithNormals<View>(inner, record);
  if (substreams) return new WithSubstreams<View>(inner, record);
  return new View(inner, record);
}

}  // namespace

CountedStream::CountedStream(randstream& stream)
    : stream_(&stream), record_(std::make_shared<Record>()), own_(stream.exchangePlugin(nullptr)) {
  try {
    if (own_) stream.exchangePlugin(makeView(*own_, record_));
  } catch (...) {
    stream.exchangePlugin(own_);
    throw;
  }
}

CountedStream::~CountedStream() {
  if (isAlive()) delete stream_->exchangePlugin(own_);
}

}  // namespace shell

#pragma once

// Counts what a stream asks of its generator, at the border between the two, while somebody wants
// to know.

#include <cstdint>
#include <memory>

#include "rng/randstream.h"

namespace shell {

struct DrawCounts {
  std::uint64_t uniforms = 0;
  std::uint64_t normals = 0;     // that the generator made itself
  std::uint64_t passedOver = 0;  // draws, by advance
  bool moved = false;            // by a reset, a restored state, or to a substream
};

// While this lives, the stream's generator stands behind a view that counts. The stream may end
// before.
class CountedStream {
 public:
  explicit CountedStream(randstream& stream);
  ~CountedStream();
  CountedStream(CountedStream const&) = delete;
  CountedStream& operator=(CountedStream const&) = delete;

  randstream& stream() const { return *stream_; }
  // False once the stream has been destroyed.
  bool isAlive() const { return record_->alive; }
  DrawCounts const& counts() const { return record_->counts; }

  struct Record {
    DrawCounts counts;
    bool alive = true;
  };

 private:
  randstream* stream_;
  std::shared_ptr<Record> record_;
  plugin_rng::IPluginRNG* own_;
};

}  // namespace shell

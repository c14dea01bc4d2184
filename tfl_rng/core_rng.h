#pragma once

// The bases of all core generators: what a generator plug-in may ask of its core.

#include <cstddef>
#include <cstdint>

#include "tfl_rng/export.h"

namespace tfl_rng {

// Outcome of an operation that moves a core.
enum errorID : int {
  ok = 0,
  indexOutOfRange = 2,
  tooManyStreams = 3,
  cannotComputeState = 4,
};

// A generator of uniform doubles. A draw is one double in the current precision mode and takes a
// fixed number of raw outputs. Used by one thread at a time; copies are independent.
//
// Each core saves its state as words: kStateWords of type StateWord, written by save(words) and
// taken by load(words), which is false, with nothing changed, for words that are none of its
// states. Class and number stand in its row of the registry too, for those who do not know the
// core.
class TFL_EXPORT CoreRNG {
 public:
  virtual ~CoreRNG() = default;

  // Returns to the start of the sequence of `seed`.
  virtual void reset(std::uint32_t seed) = 0;
  // Fills out[0, n) with uniforms in the open interval (0,1). Consumes n draws.
  virtual void randu(double* out, std::size_t n) = 0;

  bool fullPrecision() const noexcept { return fullPrecision_; }
  void setFullPrecision(bool on) noexcept { fullPrecision_ = on; }

 protected:
  explicit CoreRNG(bool fullPrecision) noexcept : fullPrecision_(fullPrecision) {}
  CoreRNG(CoreRNG const&) = default;
  CoreRNG& operator=(CoreRNG const&) = default;

 private:
  bool fullPrecision_;
};

// A core with its own method for normals.
class TFL_EXPORT CoreNormalRNG : public CoreRNG {
 public:
  // Fills out[0, n) with standard normals; the consumption is the core's own, independent of the
  // precision mode.
  virtual void randn(double* out, std::size_t n) = 0;

 protected:
  using CoreRNG::CoreRNG;
};

// A core with independent streams, each cut into substreams, and jump-ahead.
class TFL_EXPORT CoreStreamRNG : public CoreRNG {
 public:
  // Moves forward by n draws; afterwards the core stands where n draws would have left it.
  // On a status other than ok nothing has moved. The reported substream stays.
  virtual errorID advance(std::uint64_t n) = 0;
  // Moves to the start of substream `index` (from 0) of this stream. indexOutOfRange: nothing
  // moved.
  virtual errorID setSubstream(std::uint64_t index) = 0;

  virtual std::uint64_t getNumStreams() const = 0;
  virtual std::uint64_t getNumSubstreams() const = 0;
  virtual std::uint64_t getLog2StreamLen() const = 0;
  virtual std::uint64_t getLog2SubstreamLen() const = 0;

  std::uint64_t streamIndex() const noexcept { return streamIndex_; }
  // The index given to the last setSubstream, 0 after construction and reset.
  std::uint64_t substream() const noexcept { return substream_; }

 protected:
  CoreStreamRNG(std::uint64_t streamIndex, bool fullPrecision) noexcept
      : CoreRNG(fullPrecision), streamIndex_(streamIndex) {}

  void noteSubstream(std::uint64_t index) noexcept { substream_ = index; }

 private:
  std::uint64_t streamIndex_;
  std::uint64_t substream_ = 0;
};

}  // namespace tfl_rng

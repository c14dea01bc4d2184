#pragma once

// The interface between a stream and its generator plug-in, and its two extensions. A stream owns
// one plug-in, finds the extensions by dynamic_cast and never draws numbers itself.

#include <cstddef>
#include <cstdint>
#include <utility>

#include "host/export.h"
#include "host/tx_array.h"

namespace plugin_rng {

// A generator behind a stream. Used by one thread at a time.
class TV_EXPORT IPluginRNG {
 public:
  // Element types of a state array; the host's class number is the value + 6.
  enum pluginStateClassID : std::int32_t {
    doubleState = 0,
    singleState = 1,
    int8State = 2,
    uint8State = 3,
    int16State = 4,
    uint16State = 5,
    int32State = 6,
    uint32State = 7,
    int64State = 8,
    uint64State = 9,
  };

  // Fills out[0, n) with uniforms in the open interval (0,1).
  virtual void randu(double* out, std::size_t n) = 0;
  // Returns to the start of the sequence of `seed`.
  virtual void reset(std::uint32_t seed) = 0;
  virtual std::uint64_t getNumStateComponents() const = 0;
  // Writes the pluginStateClassID value and the element count of each component.
  virtual void getStateComponentTypes(std::uint64_t nComponents, txClassID* classes,
                                      std::uint64_t* lengths) const = 0;
  // Copies component i into buffers[i].
  virtual void getStateComponents(void* const* buffers) const = 0;
  // Checks all components, then loads them; a refused state changes nothing.
  virtual void setStateComponents(void const* const* buffers) = 0;
  virtual void setFullPrecision(bool on) = 0;
  virtual void destroy() = 0;
  virtual ~IPluginRNG() = default;
};

// A plug-in that makes normals itself.
class TV_EXPORT IPluginRNGRandn : public virtual IPluginRNG {
 public:
  // True when the plug-in makes normals by the method `algorithm` (case ignored, null is empty);
  // false leaves them to the stream.
  virtual bool setRandnAlg(char const* algorithm) = 0;
  // The method that a new stream starts with.
  virtual char const* getDefaultRandnAlg() const = 0;
  // Fills out[0, n) with standard normals.
  virtual void randn(double* out, std::size_t n) = 0;
};

// A plug-in whose generator has streams, substreams and jump-ahead. Indices count from 0.
class TV_EXPORT IPluginRNGSubstreams : public virtual IPluginRNG {
 public:
  // 0 when `numStreams` streams exist and this plug-in's index is below the generator's limit,
  // otherwise 3.
  virtual int checkNumStreams(std::uint64_t numStreams) const = 0;
  // Moves to the start of a substream of this stream.
  virtual void setSubstream(std::uint64_t index) = 0;
  virtual std::uint64_t getSubstream() const = 0;
  // Moves forward by n draws without drawing them.
  virtual void advance(std::uint64_t n) = 0;
  // Number of streams, and the binary logarithm of a stream's length.
  virtual std::pair<std::uint64_t, std::uint64_t> getStreamLimits() const = 0;
  // The same of substreams.
  virtual std::pair<std::uint64_t, std::uint64_t> getSubstreamLimits() const = 0;
};

// An error that a plug-in describes itself. The stream reports it as
// "TALVOR:RandStream:PluginError" with both texts.
class TV_EXPORT PluginRNGError {
 public:
  virtual char const* identifier() const noexcept = 0;
  virtual char const* message() const noexcept = 0;
  virtual ~PluginRNGError() = default;
};

// Makes a seeded plug-in, released through destroy(). Checks `nParams` (must be 0) first, then the
// number of streams and the index, and raises the generator's own identifiers.
using Factory = IPluginRNG* (*)(std::uint64_t numStreams, std::uint64_t streamIndex,
                                std::uint32_t seed, double const* params, std::uint64_t nParams);

}  // namespace plugin_rng

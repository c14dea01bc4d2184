#pragma once

// One random-number stream: a generator plug-in and the settings above any generator. The sequence
// of values is part of the contract: every operation below consumes the number of uniforms that its
// comment states, in order.
//
// Used by one thread at a time. Builds with assertions end the program when two are found in one
// stream, others do not look.

#include <cstddef>
#include <cstdint>
#include <memory>

#include "host/export.h"
#include "host/tx_array.h"
#include "plugin_rng/interfaces.h"
#include "rng/one_user.h"

namespace plugin_rng {
class IOwnPluginRNG;
}
class UniformSource;

class TV_EXPORT randstream {
 public:
  // Sizes of the family a stream belongs to.
  struct streamParamsStruct {
    std::uint64_t numStreams;
    std::uint64_t numSubstreams;
    std::uint64_t log2StreamLen;
    std::uint64_t log2SubstreamLen;
  };

  // What a stream has asked of its generator. Requests count as they are made, one in which the
  // generator fails among them.
  struct DrawCounts {
    std::uint64_t uniforms = 0;
    std::uint64_t normals = 0;     // that the generator made itself
    std::uint64_t passedOver = 0;  // draws, by jumps of advance
    std::uint64_t moves = 0;       // resets, restored states and changes of the substream
    std::uint64_t latest = 0;      // drawnInThread() behind the latest draw, in its thread

    std::uint64_t drawn() const noexcept { return uniforms + normals + passedOver; }
  };

  // Takes ownership of `plugin` (null makes a stream that can only be asked for its settings),
  // which arrives seeded. Normals start with the plug-in's own default method, else with
  // "Ziggurat". Errors: set:CantInitRandnAlg; the plug-in then stays with the caller.
  randstream(char const* generatorType, unsigned int seed, plugin_rng::IPluginRNG* plugin,
             std::uint64_t numStreams, std::uint64_t streamIndex);
  ~randstream();

  // Streams live in host memory, so that host code may release them.
  static void* operator new(std::size_t bytes);
  static void operator delete(void* memory) noexcept;
  static void* operator new(std::size_t, void* place) noexcept { return place; }
  static void operator delete(void*, void*) noexcept {}

  // A stream of its own that goes on as this one will. Everything comes along: generator state,
  // modes, method for normals, the name as written, seed, indices, the substream, a pending Polar
  // value and the counts of draws. A plug-in from elsewhere is made anew by the factory that knows
  // the stream's generator. Errors, of such plug-ins alone: create:UnknownRNGType when there is no
  // such factory, and those of the factory and of the state.
  std::unique_ptr<randstream> clone() const;
  // A stream of this one's generator, seed, indices and settings at the start of substream k: where
  // this one stands, and a state that was loaded into it, do not matter, and another thread may
  // draw from it meanwhile. Errors: create:UnknownRNGType when no factory knows the generator,
  // those of the factory and of setSubstream.
  std::unique_ptr<randstream> atSubstream(std::uint64_t k) const;
  // Back to where this stream was cloned as `earlier`. What it drew since counts as not drawn.
  void rewind(std::unique_ptr<randstream> earlier) noexcept;

  DrawCounts const& drawCounts() const noexcept { return counts_; }
  // What all streams, those that are gone too, have drawn and passed over in the calling thread.
  static std::uint64_t drawnInThread() noexcept;

  // Control. Plug-in errors become "TALVOR:RandStream:PluginError" or
  // "TALVOR:RandStream:UnexpectedPluginError"; errors of this library pass unchanged.

  // Back to the start of the sequence of `seed`; drops a pending Polar value. Modes, the normal
  // method and the stream index stay.
  void reset(unsigned int seed);
  // Moves to substream k (from 0). Without substreams only 0 is accepted, as a no-op; else
  // set:SubstreamsNotSupported.
  void setSubstream(std::uint64_t k);
  std::uint64_t getSubstream() const;
  // Leaves the generator where n draws would. The generators of this library jump, in milliseconds
  // at most; a plug-in from elsewhere that has no substreams draws and discards.
  void advance(std::uint64_t n);
  void setFullPrecision(bool on);
  // Chooses the method for normals, ignoring case: one that the generator brings itself, else
  // ziggurat, polar or inversion. Errors: set:UnknownRandnAlg, and nothing changes.
  void setRandnAlg(char const* name);
  // The method as last set, its first letter in upper case. Owned by the stream.
  char const* getRandnAlg() const noexcept { return randnAlg_; }
  void getStreamParameters(streamParamsStruct* p) const;

  char const* generatorType() const noexcept { return generatorType_; }  // as its creator wrote it
  unsigned int seed() const noexcept { return seed_; }
  // Whether a normal of the Polar method waits for the next call.
  bool pendingNormal() const noexcept { return pendingNormalValid_; }
  // Whether the generator has substreams.
  bool hasSubstreams() const noexcept { return substreamView_ != nullptr; }
  std::uint64_t numStreams() const noexcept { return numStreams_; }
  std::uint64_t streamIndex() const noexcept { return streamIndex_; }  // from 0
  bool antithetic() const noexcept { return antithetic_; }
  void setAntithetic(bool on) noexcept { antithetic_ = on; }
  bool fullPrecision() const noexcept { return fullPrecision_; }

  // Generator state: typed components, or one flat buffer of their bytes back to back in native
  // byte order. Modes, seed, normal method and a pending Polar value are not part of it.

  std::uint64_t getNumStateComponents() const;
  // Class and element count of each component. Errors: get:InvalidNumStateComponents.
  void getStateComponentTypes(std::uint64_t count, txClassID* classes,
                              std::uint64_t* lengths) const;
  // Copies component i to dest[i]. Errors: get:InvalidNumStateComponents.
  void getStateComponents(std::uint64_t count, void* const* dest) const;
  // Loads all components, or none; the method for normals of a legacy stream is the one that its
  // state selects. Errors: set:InvalidNumStateComponents and the generator's InvalidState.
  void setStateComponents(std::uint64_t count, void const* const* src);
  std::uint64_t getStateBufLen() const;  // in bytes
  // Errors: get:InvalidStateBufLen.
  void getStateBuf(void* buf, std::uint64_t len) const;
  // Errors: set:InvalidStateBufLen and the generator's InvalidState.
  void setStateBuf(void const* buf, std::uint64_t len);

  // Sampling. No guard: a plug-in's error propagates, values already written stay written. A long
  // draw that is ended from outside (plugin_rng/interruption.h) leaves the stream where it was.

  // n uniforms in (0,1), T double or float; an antithetic stream delivers 1-u. Draws n uniforms.
  template <class T>
  void randuFcn(T* out, std::uint64_t n);
  // n standard normals, T double or float, each divided by sqrt(2) when `halfVariance` (the parts
  // of a complex normal). An antithetic stream delivers -z. Draws from the generator's own normals,
  // or uniforms: Inversion n; Polar one pair for each pair of normals and each rejected candidate,
  // one value kept for the next call after an odd count; Ziggurat at least 2n.
  template <class T>
  void randnFcn(T* out, std::uint64_t n, bool halfVariance);
  // n integers of [lo, hi], stored in T by saturation; T double, float, bool or an integer type of
  // up to 32 bits. Draws n uniforms. Errors, also for n = 0: those of checkRandiLimits.
  template <class T>
  void randiFcn(double lo, double hi, T* out, std::uint64_t n);
  // A permutation of 1..n: the order of n uniforms. Draws n uniforms, also when the host's sort
  // then fails for lack of memory.
  template <class T>
  void randpermFcn(T* out, std::uint64_t n);
  // k distinct values of 1..n in random order; T double. Draws n-1 uniforms for k = n, k for
  // k < n/4, else 2k. Callers refuse an n that is no count: here a fraction is not looked for (its
  // selections may repeat and reach the integer above n), and a negative n is less than k.
  // Errors, none for k = 0: randperm:inputNTooLarge, randperm:inputKTooLarge.
  template <class T>
  void randkpermFcn(T* out, std::uint64_t k, double n);

 private:
  class OneThread;
  class InUse;
  class WholeDraw;
  // For clone and takeOver, which see to the plug-in.
  randstream(randstream const&) = default;
  randstream& operator=(randstream const&) = default;

  using NormalGenerator = void (randstream::*)(double* out, std::size_t n);

  // Each writes n normals to out[0, n). A generator from elsewhere is asked for as many uniforms as
  // the method needs for the normals of this call that are not made yet.
  void randnZiggurat(double* out, std::size_t n);
  void randnPolar(double* out, std::size_t n);
  void randnInversion(double* out, std::size_t n);

  // The plug-in, inside the guard of a control operation: a stream without one fails there.
  TV_LOCAL plugin_rng::IPluginRNG& requiredPlugin() const;

  // Sampling reaches the generator through these two, which count.
  TV_LOCAL UniformSource uniforms() noexcept;
  TV_LOCAL std::size_t chunk() const noexcept;  // of rng/chunks.h, for this stream's generator
  TV_LOCAL void drawNativeNormals(double* out, std::uint64_t n);
  TV_LOCAL void randuLongOrMirrored(double* out, std::uint64_t n);

  // Becomes `other`, a stream of the same generator, but for the spelling of the name and the
  // counts.
  TV_LOCAL void takeOver(std::unique_ptr<randstream> other) noexcept;
  friend class StreamContents;  // of rng/snapshot.cpp

  static constexpr std::size_t kNameSize = 32;

  char generatorType_[kNameSize];
  std::uint32_t seed_;
  bool antithetic_ = false;
  bool fullPrecision_ = true;
  std::uint64_t numStreams_;
  std::uint64_t streamIndex_;
  plugin_rng::IPluginRNG* plugin_;
  plugin_rng::IPluginRNGRandn* normalView_;
  plugin_rng::IPluginRNGSubstreams* substreamView_;
  plugin_rng::IPluginRNGSubstreams* jumpView_;
  bool nativeNormals_ = false;
  NormalGenerator normalGenerator_ = &randstream::randnZiggurat;
  char randnAlg_[kNameSize];
  bool pendingNormalValid_ = false;
  OneUser user_;  // in all builds, so that they lay streams out alike
  double pendingNormal_ = 0;
  plugin_rng::IOwnPluginRNG* ownView_;
  DrawCounts counts_;
};

template <>
TV_EXPORT void randstream::randuFcn(double* out, std::uint64_t n);
template <>
TV_EXPORT void randstream::randuFcn(float* out, std::uint64_t n);
template <>
TV_EXPORT void randstream::randnFcn(double* out, std::uint64_t n, bool halfVariance);
template <>
TV_EXPORT void randstream::randnFcn(float* out, std::uint64_t n, bool halfVariance);
template <>
TV_EXPORT void randstream::randpermFcn(double* out, std::uint64_t n);
template <>
TV_EXPORT void randstream::randkpermFcn(double* out, std::uint64_t k, double n);

// Checks the limits of randi and returns the number of values hi - lo + 1.
// Errors: randi:invalidLimits (not whole, lo > hi, NaN), randi:LimitsTooLarge (2^53 and beyond),
// randi:RangeTooLarge (2^53 values or more).
TV_EXPORT double checkRandiLimits(double lo, double hi);

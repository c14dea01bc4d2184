#pragma once

// What sets the sampling functions apart: a builtin draws from the VM's global stream and offers
// calls to the host's classes; a method draws from its object's stream and asks nobody. Each of
// them has error identifiers of its own.

#include <memory>

#include "errors/keys.h"
#include "host/tx_array.h"
#include "rng/acquire_global_stream.h"
#include "rng/randstream.h"
#include "rng/stream_handle.h"

namespace builtins {

// The identifiers of each function, by alias.
#define TV_REAL_KEYS(name, path)                     \
  struct name {                                      \
    using inputType = path::inputType;               \
    using unknownClass = path::invalidOutputType;    \
    using invalidPrototype = path::invalidPrototype; \
    using sparsePrototype = path::sparsePrototype;   \
  };
#define TV_INTEGER_KEYS(name, path)                    \
  struct name {                                        \
    using inputType = path::inputType;                 \
    using unknownClass = path::invalidClassname;       \
    using invalidLimits = path::invalidLimits;         \
    using invalidOutputType = path::invalidOutputType; \
    using invalidPrototype = path::invalidPrototype;   \
    using sparsePrototype = path::sparsePrototype;     \
  };
#define TV_PERMUTATION_KEYS(name, path)          \
  struct name {                                  \
    using inputType = path::inputType;           \
    using inputNTooLarge = path::inputNTooLarge; \
    using inputKTooLarge = path::inputKTooLarge; \
  };
TV_REAL_KEYS(RandKeys, TALVOR::rand)
TV_REAL_KEYS(RandnKeys, TALVOR::randn)
TV_INTEGER_KEYS(RandiKeys, TALVOR::randi)
TV_PERMUTATION_KEYS(RandpermKeys, TALVOR::randperm)
TV_REAL_KEYS(ObjectRandKeys, TALVOR::RandStream::rand)
TV_REAL_KEYS(ObjectRandnKeys, TALVOR::RandStream::randn)
TV_INTEGER_KEYS(ObjectRandiKeys, TALVOR::RandStream::randi)
TV_PERMUTATION_KEYS(ObjectRandpermKeys, TALVOR::RandStream::randperm)
#undef TV_PERMUTATION_KEYS
#undef TV_INTEGER_KEYS
#undef TV_REAL_KEYS

// Where the numbers come from. A source is made before any argument is parsed and asked for its
// stream after the last one was accepted.

class GlobalStream {
 public:
  static constexpr int kArguments = 0;
  explicit GlobalStream(txArray const* const* /*prhs*/ = nullptr) noexcept {}
  std::shared_ptr<randstream> acquire() const { return acquireGlobalRandStream(); }
};

// Owns a share of the stream, so that it outlives the call whatever becomes of the object.
class ObjectStream {
 public:
  static constexpr int kArguments = 1;  // the object
  explicit ObjectStream(txArray const* const* prhs) : stream_(streamOfObject(*prhs[0])) {}
  std::shared_ptr<randstream> const& acquire() const noexcept { return stream_; }

 private:
  std::shared_ptr<randstream> stream_;
};

template <class K>
struct Builtin {
  using Keys = K;
  using Source = GlobalStream;
  static constexpr bool kAsksClasses = true;
};

template <class K>
struct Method {
  using Keys = K;
  using Source = ObjectStream;
  static constexpr bool kAsksClasses = false;
};

}  // namespace builtins

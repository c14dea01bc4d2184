#pragma once

// The error keys of each generator, derived from the registry: keys by family under the generator's
// name, TALVOR::RandStream::mt19937ar::InvalidState, and by core class through GeneratorErrors.

#include "errors/keys.h"

namespace errors {

// The keys of the generator with core class `Core`:
//   InvalidParameter, InvalidState                      every generator
//   MultipleStreams                                     family Single
//   TooManyStreams, SubstreamsIndexOutOfRange           family Substreams
template <class Core>
struct GeneratorErrors;

}  // namespace errors

#define TV_KEYS_Single(name)                                                           \
  TV_DEFINE_KEY("TALVOR::RandStream::" #name, InvalidParameter, "InvalidParameter", 0) \
  TV_DEFINE_KEY("TALVOR::RandStream::" #name, InvalidState, "InvalidState", 0)         \
  TV_DEFINE_KEY("TALVOR::RandStream::" #name, MultipleStreams, "MultipleStreams", 0)
#define TV_KEYS_Substreams(name)                                                       \
  TV_DEFINE_KEY("TALVOR::RandStream::" #name, InvalidParameter, "InvalidParameter", 0) \
  TV_DEFINE_KEY("TALVOR::RandStream::" #name, InvalidState, "InvalidState", 0)         \
  TV_DEFINE_KEY("TALVOR::RandStream::" #name, TooManyStreams, "TooManyStreams", 0)     \
  TV_DEFINE_KEY("TALVOR::RandStream::" #name, SubstreamsIndexOutOfRange,               \
                "SubstreamsIndexOutOfRange", 0)

#define TV_USING_Single(name) using MultipleStreams = TALVOR::RandStream::name::MultipleStreams;
#define TV_USING_Substreams(name)                                  \
  using TooManyStreams = TALVOR::RandStream::name::TooManyStreams; \
  using SubstreamsIndexOutOfRange = TALVOR::RandStream::name::SubstreamsIndexOutOfRange;

#define TFL_GENERATOR(name, core, otherSpelling, family, ...)            \
  namespace tfl_rng {                                                    \
  class core;                                                            \
  }                                                                      \
  namespace TALVOR::RandStream::name {                                   \
  TV_KEYS_##family(name)                                                 \
  }                                                                      \
  template <>                                                            \
  struct errors::GeneratorErrors<tfl_rng::core> {                        \
    using InvalidParameter = TALVOR::RandStream::name::InvalidParameter; \
    using InvalidState = TALVOR::RandStream::name::InvalidState;         \
    TV_USING_##family(name)                                              \
  };
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR
#undef TV_USING_Substreams
#undef TV_USING_Single
#undef TV_KEYS_Substreams
#undef TV_KEYS_Single

#pragma once

// The generators behind the two-part syntax of rand and randn: three for uniforms, two for normals,
// each with a state of its own, and the selectors that say which of them draw. A draw moves the
// selected generator alone, and changing a selector moves none.
//
//   uniform 1  V4       the minimal standard generator, one step a draw
//   uniform 2  V5       swb2712
//   uniform 3  twister  mt19937ar in full precision
//   normal 1   V4       the polar method on minimal standard words of its own: the first normal of
//                       an accepted pair; the second is dropped
//   normal 2   V5       the ziggurat of shr3cong

#include "plugin_rng/interfaces.h"
#include "tfl_rng/mt19937ar.h"
#include "tfl_rng/shr3cong.h"
#include "tfl_rng/swb2712.h"

namespace plugin_rng {

class legacy_plugin : public IPluginRNGRandn {
 public:
  using V5Uniform = tfl_rng::swb2712;
  using V5Normal = tfl_rng::shr3cong;
  using Twister = tfl_rng::mt19937ar;

  enum Selector : std::uint32_t { kV4 = 1, kV5 = 2, kTwister = 3 };

  // The type of its streams.
  static constexpr char kType[] = "legacy";

  // The components of the state.
  enum Component : std::size_t {
    kSelectors,       // 2 uint32: uniform, normal
    kV4Uniform,       // 1 double: the word, halves exchanged
    kV5Uniform,       // 35 doubles, as swb2712
    kTwisterUniform,  // 625 uint32, as mt19937ar
    kV4Normal,        // 1 double: the word, halves exchanged
    kV5Normal,        // 2 doubles: congruential and shift-register word
    kComponents,
  };

  // Twister and V5 normals selected, every generator seeded as by seed 0.
  legacy_plugin() = default;

  void randu(double* out, std::size_t n) override;
  void randn(double* out, std::size_t n) override;
  // Moves the selected uniform generator.
  void advance(std::uint64_t n);
  // Seeds the two selected generators. 0 stands for each one's default seed.
  void reset(std::uint32_t seed) override;

  std::uint64_t getNumStateComponents() const override { return kComponents; }
  void getStateComponentTypes(std::uint64_t nComponents, txClassID* classes,
                              std::uint64_t* lengths) const override;
  void getStateComponents(void* const* buffers) const override;
  // Selectors are taken as they stand: every uniform one but 1 and 2 means the twister, every
  // normal one but 1 means V5. V4 words are repaired like seeds, V5 normal words taken as they are.
  // Errors: swb2712:InvalidState, mt19937ar:InvalidState.
  void setStateComponents(void const* const* buffers) override;

  // Error, always: set:LegacyPrecision.
  void setFullPrecision(bool on) override;
  // Accepts the name of the selected normal generator. Error: set:LegacyNormalTransform.
  bool setRandnAlg(char const* algorithm) override;
  // That name: "V4 (polar)", else "V5 (ziggurat)".
  char const* getDefaultRandnAlg() const override;
  void destroy() override { delete this; }

 private:
  struct Generators {
    std::uint32_t uniformSelector = kTwister;
    std::uint32_t normalSelector = kV5;
    std::uint32_t v4UniformWord = v4Seeded(0);
    std::uint32_t v4NormalWord = v4Seeded(0);
    V5Uniform v5Uniform{0, true};
    V5Normal v5Normal{0, true};
    Twister twister{0, true};
  };

  // The V4 word of a seed or saved word: halves exchanged, 0 replaced, at most 2^31 - 2.
  static std::uint32_t v4Seeded(std::uint32_t seed) noexcept;

  Generators generators_;
};

}  // namespace plugin_rng

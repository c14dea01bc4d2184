#pragma once

// The plug-in of every registered generator, mt19937ar_plugin and so on: the class template that
// its row asks for, and its core's saved state.

#include <cstdint>
#include <type_traits>

#include "plugin_rng/substreams.h"
#include "tfl_rng/generator_catalogue.h"

namespace plugin_rng {

template <class Core>
inline constexpr bool kHasOwnNormals = *tfl_rng::kGeneratorOf<Core>->nativeNormals != '\0';

template <class Core>
using PluginBase = std::conditional_t<
    tfl_rng::kGeneratorOf<Core>->hasSubstreams(),
    std::conditional_t<kHasOwnNormals<Core>, PluginRNGInversion<Core>, PluginRNGSubstreams<Core>>,
    std::conditional_t<kHasOwnNormals<Core>, PluginRNGRandn<Core>, PluginRNG<Core>>>;

template <class Word>
inline constexpr auto kClassOf = std::is_same_v<Word, double>    ? IPluginRNG::doubleState
                                 : sizeof(Word) == sizeof(float) ? IPluginRNG::uint32State
                                                                 : IPluginRNG::uint64State;

template <class Core>
class Plugin : public PluginBase<Core> {
 public:
  using Word = typename Core::StateWord;
  static_assert(kStateClass<Core> == kClassOf<Word> && kStateLen<Core> == Core::kStateWords);

  using PluginBase<Core>::PluginBase;

  void getStateComponents(void* const* buffers) const override {
    this->core->save(static_cast<Word*>(buffers[0]));
  }
  void setStateComponents(void const* const* buffers) override {
    loadState(*this->core, buffers[0]);
  }
};

#define TFL_GENERATOR(name, core, ...) using core##_plugin = Plugin<tfl_rng::core>;
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR

}  // namespace plugin_rng

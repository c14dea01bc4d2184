#pragma once

// The plug-ins of all generators, with their states as words whatever the element class.

#include <algorithm>
#include <bit>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "plugin_rng/factories.h"
#include "tests/support/known_answers.h"

namespace testing_support {

// A row of the registry; with streams, also one of tests/plugin_rng/stream_limits.txt.
struct Generator {
  std::string name;
  plugin_rng::Factory make = nullptr;
  int stateClass = 0;
  std::size_t stateLen = 0;
  std::string normals;  // "" for none
  std::uint64_t numStreams = 0, log2StreamLen = 0, numSubstreams = 0, log2SubstreamLen = 0;
  std::size_t serialLimit = 0;

  bool hasStreams() const { return numStreams != 0; }
};
inline void PrintTo(Generator const& generator, std::ostream* out) { *out << generator.name; }

inline std::vector<Generator> allGenerators() {
  std::vector<Generator> all = {
#define TFL_GENERATOR(name, core, otherSpelling, family, stateClass, stateLen, normals, ...) \
  {#name, plugin_rng::make_##name, stateClass, stateLen, normals},
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR
  };
  for (auto const& row : known_answers::rows("plugin_rng/stream_limits.txt")) {
    auto const generator = std::ranges::find(all, row.at(0), &Generator::name);
    if (generator == all.end()) throw std::runtime_error("stream_limits.txt: " + row[0]);
    auto const number = [&](std::size_t field) { return std::stoull(row.at(field), nullptr, 0); };
    generator->numStreams = number(1);
    generator->log2StreamLen = number(2);
    generator->numSubstreams = number(3);
    generator->log2SubstreamLen = number(4);
    generator->serialLimit = number(5);
  }
  return all;
}

inline std::vector<Generator> generatorsWithStreams() {
  auto all = allGenerators();
  std::erase_if(all, [](Generator const& generator) { return !generator.hasStreams(); });
  return all;
}

struct DestroyPlugin {
  void operator()(plugin_rng::IPluginRNG* plugin) const { plugin->destroy(); }
};

// The bits of the elements of a state.
using State = std::vector<std::uint64_t>;

// A plug-in of one generator.
class Plugin {
 public:
  Plugin(Generator const& generator, std::uint32_t seed, std::size_t stream = 0)
      : generator_(generator), plugin_(generator.make(1, stream, seed, nullptr, 0)) {}

  plugin_rng::IPluginRNG& operator*() const { return *plugin_; }
  plugin_rng::IPluginRNG* operator->() const { return plugin_.get(); }
  // Null when the generator has none.
  plugin_rng::IPluginRNGRandn* normals() const {
    return dynamic_cast<plugin_rng::IPluginRNGRandn*>(plugin_.get());
  }
  plugin_rng::IPluginRNGSubstreams& streams() const {
    return dynamic_cast<plugin_rng::IPluginRNGSubstreams&>(*plugin_);
  }

  std::vector<double> draw(std::size_t n) const {
    std::vector<double> values(n);
    plugin_->randu(values.data(), n);
    return values;
  }
  State state() const {
    return withElements([&](auto elements) {
      void* buffers[] = {elements.data()};
      plugin_->getStateComponents(buffers);
      State state;
      for (auto const element : elements) state.push_back(bitsOf(element));
      return state;
    });
  }
  void setState(State const& state) const {
    withElements([&](auto elements) {
      for (std::size_t i = 0; i < elements.size(); ++i) setBits(elements[i], state.at(i));
      void const* buffers[] = {elements.data()};
      plugin_->setStateComponents(buffers);
      return state;
    });
  }

 private:
  template <class Action>
  State withElements(Action&& action) const {
    std::size_t const n = generator_.stateLen;
    if (generator_.stateClass == plugin_rng::IPluginRNG::doubleState)
      return action(std::vector<double>(n));
    if (generator_.stateClass == plugin_rng::IPluginRNG::uint32State)
      return action(std::vector<std::uint32_t>(n));
    return action(std::vector<std::uint64_t>(n));
  }
  static std::uint64_t bitsOf(double value) { return std::bit_cast<std::uint64_t>(value); }
  static std::uint64_t bitsOf(std::uint32_t value) { return value; }
  static std::uint64_t bitsOf(std::uint64_t value) { return value; }
  static void setBits(double& element, std::uint64_t bits) {
    element = std::bit_cast<double>(bits);
  }
  template <class Word>
  static void setBits(Word& element, std::uint64_t bits) {
    element = static_cast<Word>(bits);
  }

  Generator const& generator_;
  std::unique_ptr<plugin_rng::IPluginRNG, DestroyPlugin> plugin_;
};

}  // namespace testing_support

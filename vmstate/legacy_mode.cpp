#include "vmstate/legacy_mode.h"

#include <cstring>
#include <tuple>

#include "errors/argument_counts.h"
#include "errors/keys.h"
#include "host/allocator.h"
#include "plugin_rng/legacy_plugin.h"
#include "plugin_rng/own_plugin.h"
#include "rng/stream_handle.h"
#include "tfl_rng/convert.h"
#include "tfl_rng/generator_catalogue.h"
#include "vmstate/global_stream.h"
#include "vmstate/vm_record.h"

namespace {

using plugin_rng::legacy_plugin;

struct LegacyRandStreamUSMContext {
  std::shared_ptr<randstream> stream;
};
using LegacyRecord = VmRecord<LegacyRandStreamUSMContext>;

// Host memory for a stream and its owner count in one piece.
template <class T>
struct HostAllocator {
  using value_type = T;
  HostAllocator() = default;
  template <class U>
  explicit HostAllocator(HostAllocator<U> const&) noexcept {}
  T* allocate(std::size_t count) { return static_cast<T*>(txMallocEx(count * sizeof(T))); }
  void deallocate(T* memory, std::size_t) noexcept { txFreeEx(memory); }
  bool operator==(HostAllocator const&) const = default;
};

std::shared_ptr<randstream> makeLegacyStream() {
  auto plugin = std::make_unique<plugin_rng::Own<legacy_plugin>>();
  auto stream = std::allocate_shared<randstream>(HostAllocator<randstream>(), legacy_plugin::kType,
                                                 0u, plugin.get(), 1ul, 0ul);
  std::ignore = plugin.release();  // the stream's from here on
  return stream;
}

// The components of the legacy stream's state.
struct LegacyState {
  struct {
    std::uint32_t uniform, normal;
  } selectors;
  double uniformSeed;
  double uniformState[tfl_rng::kGeneratorOf<legacy_plugin::V5Uniform>->stateLen];
  std::uint32_t uniformTwister[tfl_rng::kGeneratorOf<legacy_plugin::Twister>->stateLen];
  double normalSeed;
  double normalState[tfl_rng::kGeneratorOf<legacy_plugin::V5Normal>->stateLen];

  explicit LegacyState(randstream const& stream) { stream.getStateComponents(kCount, pieces); }
  LegacyState(LegacyState const&) = delete;
  LegacyState& operator=(LegacyState const&) = delete;

  void store(randstream& stream) const { stream.setStateComponents(kCount, pieces); }

  void* piece(LegacyGenerator generator) { return pieces[static_cast<std::size_t>(generator)]; }
  static std::size_t bytes(LegacyGenerator generator) {
    constexpr std::size_t kBytes[kCount] = {sizeof selectors,    sizeof uniformSeed,
                                            sizeof uniformState, sizeof uniformTwister,
                                            sizeof normalSeed,   sizeof normalState};
    return kBytes[static_cast<std::size_t>(generator)];
  }

 private:
  static constexpr std::size_t kCount = legacy_plugin::kComponents;
  void* pieces[kCount] = {&selectors,     &uniformSeed, uniformState,
                          uniformTwister, &normalSeed,  normalState};
};

// Generators are counted through: three of uniforms, then those of normals.
constexpr std::size_t kUniformGenerators = std::size(tfl_rng::kLegacyUniforms);

std::size_t indexOf(LegacyGenerator generator) { return static_cast<std::size_t>(generator) - 1; }
bool isNormal(LegacyGenerator generator) { return indexOf(generator) / kUniformGenerators != 0; }
// Its number among the generators of its distribution.
std::uint32_t selectorOf(LegacyGenerator generator) {
  return static_cast<std::uint32_t>(indexOf(generator) % kUniformGenerators + 1);
}

tfl_rng::LegacyKeyword const& rowOf(LegacyGenerator generator) {
  std::size_t const i = indexOf(generator) % kUniformGenerators;
  return isNormal(generator) ? tfl_rng::kLegacyNormals[i] : tfl_rng::kLegacyUniforms[i];
}

bool drawsGlobally(LegacyGenerator generator, LegacyState const& state,
                   std::shared_ptr<randstream> const& legacy) {
  const auto selector = isNormal(generator) ? state.selectors.normal : state.selectors.uniform;
  return findGlobalRandStream() == legacy && selector == selectorOf(generator);
}

// Selects `generator`, whose component is in place, in the legacy stream and makes that global.
void activate(LegacyGenerator generator, LegacyState& state,
              std::shared_ptr<randstream> const& legacy) {
  // A machine whose global stream cannot be made is in no mode at all.
  const bool entering = acquireGlobalRandStream() != legacy;
  const bool normal = isNormal(generator);
  (normal ? state.selectors.normal : state.selectors.uniform) = selectorOf(generator);
  state.store(*legacy);
  if (!entering) return;
  setGlobalRandStream(legacy);
  txWarningMsgId(TALVOR::RandStream::ActivatingLegacyGenerators(normal ? "RANDN" : "RAND",
                                                                legacyKeyword(generator)));
}

}  // namespace

char const* legacyKeyword(LegacyGenerator generator) noexcept { return rowOf(generator).keyword; }

LegacyStateType legacyStateType(LegacyGenerator generator) noexcept {
  tfl_rng::Generator const& row = *rowOf(generator).generator;
  return {static_cast<txClassID>(txClassDouble + row.stateClass), row.stateLen};
}

std::shared_ptr<randstream> acquireLegacyRandStream() {
  auto& record = LegacyRecord::findOrInsert();
  if (!record.stream) record.stream = makeLegacyStream();
  return record.stream;
}

void seedLegacyGenerator(LegacyGenerator generator, double seed) {
  auto const legacy = acquireLegacyRandStream();
  LegacyState state(*legacy);
  const std::uint32_t word = tfl_rng::toLow32(seed);
  switch (generator) {
    case LegacyGenerator::uniformSeed:
      state.uniformSeed = seed;
      break;
    case LegacyGenerator::uniformState:
      legacy_plugin::V5Uniform(word, true).save(state.uniformState);
      break;
    case LegacyGenerator::uniformTwister:
      legacy_plugin::Twister(word, true).save(state.uniformTwister);
      break;
    case LegacyGenerator::normalSeed:
      state.normalSeed = seed;
      break;
    case LegacyGenerator::normalState:
      legacy_plugin::V5Normal(word, true).save(state.normalState);
      break;
  }
  activate(generator, state, legacy);
}

void loadLegacyGenerator(LegacyGenerator generator, void const* state) {
  auto const legacy = acquireLegacyRandStream();
  LegacyState all(*legacy);
  std::memcpy(all.piece(generator), state, LegacyState::bytes(generator));
  activate(generator, all, legacy);
}

void readLegacyGenerator(LegacyGenerator generator, void* state) {
  auto const legacy = acquireLegacyRandStream();
  LegacyState all(*legacy);
  std::memcpy(state, all.piece(generator), LegacyState::bytes(generator));
  if (drawsGlobally(generator, all, legacy)) return;
  txWarningMsgId(TALVOR::RandStream::ReadingInactiveLegacyGeneratorState(
      legacyKeyword(generator), isNormal(generator) ? "normal" : "uniform"));
}

void getLegacyRandStream(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** /*prhs*/) {
  if (nlhs > 1 || nrhs != 0) errors::raise(TALVOR::RandStream::set::WrongNumberArgs());
  plhs[0] = makeStreamHandle(acquireLegacyRandStream());
}

void inLegacyMode(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** /*prhs*/) {
  errors::checkCounts(nlhs, 1, nrhs, 0, 0);
  plhs[0] = txCreateLogical(acquireGlobalRandStream() == acquireLegacyRandStream());
}

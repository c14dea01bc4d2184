#include "vmstate/legacy_mode.h"

#include <cstring>
#include <tuple>

#include "errors/argument_counts.h"
#include "errors/keys.h"
#include "host/allocator.h"
#include "plugin_rng/legacy_plugin.h"
#include "plugin_rng/own_plugin.h"
#include "rng/state_components.h"
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
class LegacyState {
 public:
  explicit LegacyState(randstream const& stream)
      : components_(stream), pieces_(components_.fetch(stream)) {}

  void store(randstream& stream) const { stream.setStateComponents(components_.count(), pieces_); }

  // Which generator draws uniforms, or normals.
  std::uint32_t& selector(bool normal) const {
    return static_cast<std::uint32_t*>(pieces_[legacy_plugin::kSelectors])[normal];
  }
  void* piece(LegacyGenerator generator) const {
    return pieces_[static_cast<std::size_t>(generator)];
  }
  std::size_t bytes(LegacyGenerator generator) const {
    return components_.bytes(static_cast<std::size_t>(generator));
  }

 private:
  StateComponents components_;
  void* const* pieces_;
};

// The state of a generator alone, seeded.
template <class Core>
void saveSeeded(std::uint32_t seed, void* state) {
  Core(seed, true).save(static_cast<typename Core::StateWord*>(state));
}

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
  return findGlobalRandStream() == legacy &&
         state.selector(isNormal(generator)) == selectorOf(generator);
}

// Selects `generator`, whose component is in place, in the legacy stream and makes that global.
void activate(LegacyGenerator generator, LegacyState const& state,
              std::shared_ptr<randstream> const& legacy) {
  // A machine whose global stream cannot be made is in no mode at all.
  const bool entering = acquireGlobalRandStream() != legacy;
  const bool normal = isNormal(generator);
  state.selector(normal) = selectorOf(generator);
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
  LegacyState const state(*legacy);
  const std::uint32_t word = tfl_rng::toLow32(seed);
  void* const piece = state.piece(generator);
  switch (generator) {
    case LegacyGenerator::uniformSeed:
    case LegacyGenerator::normalSeed:
      *static_cast<double*>(piece) = seed;
      break;
    case LegacyGenerator::uniformState:
      saveSeeded<legacy_plugin::V5Uniform>(word, piece);
      break;
    case LegacyGenerator::uniformTwister:
      saveSeeded<legacy_plugin::Twister>(word, piece);
      break;
    case LegacyGenerator::normalState:
      saveSeeded<legacy_plugin::V5Normal>(word, piece);
      break;
  }
  activate(generator, state, legacy);
}

void loadLegacyGenerator(LegacyGenerator generator, void const* state) {
  auto const legacy = acquireLegacyRandStream();
  LegacyState const all(*legacy);
  std::memcpy(all.piece(generator), state, all.bytes(generator));
  activate(generator, all, legacy);
}

void readLegacyGenerator(LegacyGenerator generator, void* state) {
  auto const legacy = acquireLegacyRandStream();
  LegacyState const all(*legacy);
  std::memcpy(state, all.piece(generator), all.bytes(generator));
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

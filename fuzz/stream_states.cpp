// States of every generator, changed or made of any bytes, followed by draws of every kind.

#include <algorithm>
#include <memory>
#include <string>

#include "embedded_host/vm_context.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/stream_checks.h"
#include "rng/mr_functions.h"
#include "runtime/vm.h"
#include "tfl_rng/generator_catalogue.h"

namespace {

using fuzz::StateBytes;

constexpr auto kGenerators = tfl_rng::generatorNames();

// A stream of a registered generator, or the legacy stream of a VM of its own.
class Stream {
 public:
  explicit Stream(std::size_t generator) : inside_(vm_.context()) {
    vm_.context().useSettingsFile("no-such-file.toml");
    vm_.context().setWarningSink([](auto const&, std::string const&) {});
    if (generator < std::size(kGenerators)) {
      own_.reset(mrCreateRNGStream(kGenerators[generator], 1, 0, 7, nullptr, 0));
    } else {
      vm_.call("rand", {txCreateText("seed").get(), txCreateDouble(7).get()}, 0);
    }
  }
  randstream& operator*() const { return own_ ? *own_ : *mrGetGlobalStream(); }
  randstream* operator->() const { return &**this; }

 private:
  runtime::Vm vm_;
  embedded_host::EnterVm inside_;
  std::unique_ptr<randstream> own_;
};

// The state of a fresh stream with some words replaced, or any bytes.
StateBytes wantedState(randstream const& stream, fuzz::ByteReader& input, bool changes) {
  StateBytes state = fuzz::stateOf(stream);
  if (!changes) {
    auto const bytes = input.takeBytes(state.size());
    std::fill(std::copy(bytes.begin(), bytes.end(), state.begin()), state.end(), std::uint8_t{0});
    return state;
  }
  for (int i = input.take<std::uint8_t>() % 16; i > 0; --i) {
    std::size_t const at = input.take<std::uint16_t>() % (state.size() / 4) * 4;
    auto const bytes = input.takeBytes(std::min<std::size_t>(8, state.size() - at));
    std::copy(bytes.begin(), bytes.end(), state.begin() + static_cast<std::ptrdiff_t>(at));
  }
  return state;
}

// What the second byte of an input asks for; its two upper bits choose the method of normals.
enum Choice : std::uint8_t {
  kChanges = 1,
  kReduced = 2,
  kAntithetic = 4,
  kSubstream = 8,
};

std::vector<double> drawAsChosen(randstream& stream, std::uint8_t choices, std::uint8_t sizes) {
  constexpr char const* kMethods[] = {nullptr, "Ziggurat", "Polar", "Inversion"};
  try {
    if (choices & kReduced) stream.setFullPrecision(false);
    if (char const* const method = kMethods[choices >> 6]) stream.setRandnAlg(method);
  } catch (foundation::core::except::AnyException const&) {
    // The legacy stream has neither choice.
  }
  stream.setAntithetic(choices & kAntithetic);
  std::vector<double> drawn = fuzz::drawAll(stream, sizes / 16 * std::size_t{64});
  stream.advance(sizes % 16);
  if (choices & kSubstream) {
    try {
      stream.setSubstream(1 + sizes);
      stream.advance(std::uint64_t{1} << 40);
    } catch (foundation::core::except::AnyException const&) {
      // A generator without substreams.
    }
  }
  std::vector<double> const more = fuzz::drawAll(stream, 33);
  drawn.insert(drawn.end(), more.begin(), more.end());
  return drawn;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  fuzz::ByteReader input(data, size);
  std::size_t const generator = input.below(std::size(kGenerators) + 1);
  auto const choices = input.take<std::uint8_t>();
  auto const sizes = input.take<std::uint8_t>();
  Stream const first(generator);
  StateBytes const wanted = wantedState(*first, input, choices & kChanges);
  StateBytes const before = fuzz::stateOf(*first);
  try {
    first->setStateBuf(wanted.data(), wanted.size());
  } catch (foundation::core::except::AnyException const& error) {
    fuzz::check(error.GetID().ends_with(":InvalidState"), "a state is refused as invalid");
    fuzz::check(fuzz::stateOf(*first) == before, "a refused state changes nothing");
    return 0;
  }
  StateBytes const kept = fuzz::stateOf(*first);
  // Accepted with a position that counts as 0: the one state that is read but cannot be set.
  if (std::ranges::all_of(kept, [](std::uint8_t byte) { return byte == 0; })) return 0;
  std::vector<double> const drawn = drawAsChosen(*first, choices, sizes);
  StateBytes const after = fuzz::stateOf(*first);

  Stream const second(generator);
  second->setStateBuf(kept.data(), kept.size());
  fuzz::check(fuzz::stateOf(*second) == kept, "a state that was read can be set");
  std::vector<double> const again = drawAsChosen(*second, choices, sizes);
  fuzz::check(fuzz::sameBits(drawn, again), "a state that was set again gives the same draws");
  fuzz::check(fuzz::stateOf(*second) == after, "a state that was set again ends in the same state");
  return 0;
}

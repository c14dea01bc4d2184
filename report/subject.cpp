#include "report/subject.h"

#include <fmt/format.h>

#include <algorithm>

#include "rng/mr_functions.h"
#include "runtime/vm.h"

namespace report {

namespace {

// The shortest integer relation of three successive words of x <- 16807 x modulo 2^31 - 1: the
// planes that lie farthest apart. Squared length 408197, as in D. E. Knuth, The Art of Computer
// Programming 2, section 3.3.4, table 1.
constexpr Planes kMinimalStandard{{90, -44, 631}, {0, 1, 2}, "the planes of 16807 mod 2³¹ − 1"};
// z(n) - z(n-12) + z(n-27) is 0 or the borrow, modulo 1.
constexpr Planes kSubtractWithBorrow{
    {1, -1, 1}, {27, 15, 0}, "the recurrence z(n) = z(n−12) − z(n−27)"};

constexpr double kSeam256 = 3.6541528853610088;
constexpr double kSeam128 = 3.442619855899;

constexpr Traits kTraits[] = {
    {"mt19937ar", 53, 19936, {198, 312, 0}, kMinimalStandard, kSeam256},
    {"dsfmt19937", 51, 19937, {148, 234, 382}, kMinimalStandard, kSeam256},
    {"mlfg6331_64", 52, 124, {31, 32, 63}, kMinimalStandard, kSeam256},
    {"mrg32k3a", 53, 190, {1, 3, 0}, kMinimalStandard, kSeam256},
    {"mcg16807", 52, 30, {1, 0, 0}, kMinimalStandard, kSeam256},
    {"philox4x32_10", 52, 128, {2, 0, 0}, kMinimalStandard, kSeam256},
    {"shr3cong", 52, 63, {1, 0, 0}, kMinimalStandard, kSeam128},
    {"swb2712", 53, 1430, {12, 15, 27}, kSubtractWithBorrow, kSeam256},
    {"legacy", 53, 1430, {12, 15, 27}, kSubtractWithBorrow, kSeam128},
    {"threefry4x64_20", 52, 256, {4, 0, 0}, kMinimalStandard, kSeam256},
};
constexpr Traits kUnknown{"", 52, 0, {0, 0, 0}, kMinimalStandard, kSeam256};

struct Spelling {
  char const* name;
  char const* other;
};
constexpr Spelling kSpellings[] = {
#define TFL_GENERATOR(name, core, otherSpelling, family, stateClass, stateLen, normals, period) \
  {#name, otherSpelling},
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR
};

constexpr char kLegacy[] = "legacy";

// The legacy stream belongs to a virtual machine, which lives as long as the stream is used.
std::shared_ptr<randstream> legacyStream(std::uint32_t seed) {
  auto const vm = std::make_shared<runtime::Vm>();
  // It warns of the switch, which is what is wanted here.
  vm->context().setWarningSink([](auto const&, std::string const&) {});
  vm->evaluate(fmt::format("rand('state',{0}); randn('state',{0});", seed));
  embedded_host::EnterVm const inside(vm->context());
  return {vm, mrGetGlobalStream()};
}

}  // namespace

Traits traitsOf(std::string_view name) {
  auto const* const row =
      std::ranges::find_if(kTraits, [&](Traits const& traits) { return name == traits.name; });
  return row == std::end(kTraits) ? kUnknown : *row;
}

Subject subjectNamed(std::string_view name, std::uint32_t seed) {
  if (name == kLegacy) {
    return {kLegacy, seed, traitsOf(kLegacy), false,
            [](std::uint32_t ofSeed, std::uint64_t) { return legacyStream(ofSeed); }};
  }
  std::string const asked(name);
  // Refuses unknown names; what is known is found under the canonical one.
  std::unique_ptr<randstream> const first(mrCreateRNGStream(asked.c_str(), 1, 0, seed, nullptr, 0));
  auto const* const spelling = std::ranges::find_if(kSpellings, [&](Spelling const& s) {
    return strcasecmp(s.name, asked.c_str()) == 0 || strcasecmp(s.other, asked.c_str()) == 0;
  });
  Subject subject;
  subject.name = spelling->name;
  subject.seed = seed;
  subject.traits = traitsOf(subject.name);
  subject.hasSubstreams = first->hasSubstreams();
  subject.make = [type = subject.name, several = subject.hasSubstreams](std::uint32_t ofSeed,
                                                                        std::uint64_t stream) {
    return std::shared_ptr<randstream>(
        mrCreateRNGStream(type.c_str(), several ? kNeighbours : 1, stream, ofSeed, nullptr, 0));
  };
  return subject;
}

void choosePrecision(randstream& stream, bool full) {
  if (std::string_view(stream.generatorType()) != kLegacy) stream.setFullPrecision(full);
}

std::shared_ptr<randstream> neighbour(Subject const& subject, std::uint64_t i) {
  if (!subject.hasSubstreams) return subject.make(subject.seed + static_cast<std::uint32_t>(i), 0);
  auto stream = subject.make(subject.seed, i / 2);
  stream->setSubstream(i % 2);
  return stream;
}

std::string neighbourName(Subject const& subject, std::uint64_t i) {
  if (!subject.hasSubstreams) {
    return fmt::format("seed {}", subject.seed + static_cast<std::uint32_t>(i));
  }
  return fmt::format("{}.{}", i / 2 + 1, i % 2 + 1);
}

}  // namespace report

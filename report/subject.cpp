#include "report/subject.h"

#include <fmt/format.h>

#include <algorithm>

#include "rng/create_stream.h"
#include "rng/generator_names.h"
#include "rng/mr_functions.h"
#include "runtime/vm.h"

namespace report {

namespace {

// The shortest integer relation of three successive words of x <- 16807 x modulo 2^31 - 1: the
// planes that lie farthest apart. Squared length 408197, as in D. E. Knuth, The Art of Computer
// Programming 2, section 3.3.4, table 1.
Planes const kMinimalStandard{{90, -44, 631}, {0, 1, 2}, "the planes of 16807 mod 2³¹ − 1"};
// z(n) - z(n-near) + z(n-far) is 0 or the borrow, modulo 1.
Planes difference(int near, int far) {
  return {{1, -1, 1},
          {far, far - near, 0},
          fmt::format("the recurrence z(n) = z(n−{}) − z(n−{})", near, far)};
}

constexpr double kSeam256 = 3.6541528853610088;
constexpr double kSeam128 = 3.442619855899;

// Steps as draws of full precision: the last of them ends in that draw.
int drawsOf(tfl_rng::GeneratorTraits const& traits, int steps) {
  return (steps + traits.stepsADraw - 1) / traits.stepsADraw;
}

// What the uniforms of one generator and the normals of another are like.
Traits traitsOf(tfl_rng::Generator const& uniforms, tfl_rng::Generator const& normals) {
  using Kind = tfl_rng::Ties::Kind;
  tfl_rng::GeneratorTraits const& row = uniforms.traits;
  auto const draws = [&](int steps) { return drawsOf(row, steps); };
  auto const [kind, near, far] = row.ties;
  Traits traits;
  traits.freeBits = row.bits;
  traits.log2Period = row.log2Draws;
  traits.stepsADraw = row.stepsADraw;
  if (kind == Kind::recent)
    traits.lags = {draws(far), 0, 0};
  else
    traits.lags = {draws(near), draws(far - near), draws(far)};
  traits.planes = kind == Kind::difference ? difference(near, far) : kMinimalStandard;
  traits.zigguratSeam = normals.traits.zigguratLayers == 128 ? kSeam128 : kSeam256;
  return traits;
}

constexpr char kLegacy[] = "legacy";

// Of what rand and randn draw from after legacyStream()'s calls.
constexpr char kLegacyKeyword[] = "state";
Traits legacyTraits() {
  auto const chosen = [](std::span<tfl_rng::LegacyKeyword const> rows) {
    return *std::ranges::find(rows, std::string_view(kLegacyKeyword),
                              &tfl_rng::LegacyKeyword::keyword)
                ->generator;
  };
  return traitsOf(chosen(tfl_rng::kLegacyUniforms), chosen(tfl_rng::kLegacyNormals));
}

// The legacy stream belongs to a virtual machine, which lives as long as the stream is used.
std::shared_ptr<randstream> legacyStream(std::uint32_t seed) {
  auto const vm = std::make_shared<runtime::Vm>();
  vm->context().useSettingsFile({});  // what the user has set is of no account
  // It warns of the switch, which is what is wanted here.
  vm->context().setWarningSink([](auto const&, std::string const&) {});
  vm->evaluate(fmt::format("rand('{0}',{1}); randn('{0}',{1});", kLegacyKeyword, seed));
  embedded_host::EnterVm const inside(vm->context());
  return {vm, mrGetGlobalStream()};
}

}  // namespace

Subject subjectNamed(std::string_view name, std::uint32_t seed) {
  if (ascii_case::equal(name, kLegacy)) {
    return {kLegacy, seed, legacyTraits(), false,
            [](std::uint32_t ofSeed, std::uint64_t) { return legacyStream(ofSeed); }};
  }
  Subject subject;
  subject.name = rng::createStream(name, seed)->generatorType();  // refuses unknown names
  subject.seed = seed;
  tfl_rng::Generator const& generator = *rng::generatorNamed(subject.name);
  subject.traits = traitsOf(generator, generator);
  subject.hasSubstreams = generator.hasSubstreams();
  subject.make = [type = subject.name, several = subject.hasSubstreams](std::uint32_t ofSeed,
                                                                        std::uint64_t stream) {
    return std::shared_ptr<randstream>(
        rng::createStream(type, ofSeed, stream, several ? kNeighbours : 1));
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

// Long draws that are ended from outside.

#include <gmock/gmock.h>

#include <atomic>
#include <functional>

#include "errors/key.h"
#include "plugin_rng/interruption.h"
#include "rng/mr_functions.h"
#include "rng/snapshot.h"
#include "tests/support/identifiers.h"
#include "tests/support/scripted_plugin.h"

namespace {

using plugin_rng::kUninterrupted;
using Stream = std::unique_ptr<randstream>;

struct Ended final : errors::Key {
  Ended() : Key("TEST", "ended") {}
};

class Interruption : public testing::Test {
 protected:
  Interruption() {
    plugin_rng::endDrawsWhen(&requested, [] { errors::raise(Ended()); });
  }
  ~Interruption() override { requested = false; }

  static inline std::atomic<bool> requested = false;
};

using Draw = std::function<void(randstream&, std::size_t n)>;
struct Row {
  char const* name;
  Draw draw;
};

template <class T>
std::vector<T> room(std::size_t n) {
  return std::vector<T>(n);
}

Draw normals(char const* method, bool antithetic = false) {
  return [=](randstream& s, std::size_t n) {
    if (method) s.setRandnAlg(method);
    s.setAntithetic(antithetic);
    s.randnFcn(room<double>(n).data(), n, antithetic);
  };
}

// k of k * times values; some are needed to pass the last look.
Draw permutation(std::size_t more, double times) {
  return [=](randstream& s, std::size_t n) {
    std::size_t const k = n + more;
    s.randkpermFcn(room<double>(k).data(), k, times * static_cast<double>(k));
  };
}

const Row kDraws[] = {
    {"rand", [](auto& s, auto n) { s.randuFcn(room<double>(n).data(), n); }},
    {"rand, antithetic",
     [](auto& s, auto n) {
       s.setAntithetic(true);
       s.randuFcn(room<double>(n).data(), n);
     }},
    {"rand, single", [](auto& s, auto n) { s.randuFcn(room<float>(n).data(), n); }},
    {"randn", normals(nullptr)},
    {"randn, complex and antithetic", normals(nullptr, true)},
    {"randn, single", [](auto& s, auto n) { s.randnFcn(room<float>(n).data(), n, false); }},
    {"randn by Ziggurat", normals("Ziggurat")},
    {"randn by Polar", normals("Polar")},
    {"randn by Inversion", normals("Inversion")},
    {"randi", [](auto& s, auto n) { s.randiFcn(1, 6, room<signed char>(n).data(), n); }},
    {"randperm", [](auto& s, auto n) { s.randpermFcn(room<double>(n).data(), n); }},
    {"randperm, all by steps", permutation(100, 1)},
    {"randperm, half", permutation(100, 2)},
    {"randperm, some of few", permutation(0, 8)},
    {"randperm, some of many", permutation(0, 1e9)},
    {"advance", [](auto& s, auto n) { s.advance(n); }},
};

class LongDraw : public Interruption, public testing::WithParamInterface<char const*> {
 protected:
  static Stream make() { return Stream(mrCreateRNGStream(GetParam(), 1, 0, 7, nullptr, 0)); }
};

TEST_P(LongDraw, ThatIsEndedLeavesTheStreamWhereItWas) {
  for (Row const& row : kDraws) {
    Stream const stream = make();
    SCOPED_TRACE(row.name);
    row.draw(*stream, 101);
    std::string const before = takeSnapshot(*stream);
    auto const counted = stream->drawCounts().drawn();
    auto const inThread = randstream::drawnInThread();
    bool const isShort = row.name == std::string("advance");

    requested = true;
    std::string const ended =
        testing_support::identifierOf([&] { row.draw(*stream, kUninterrupted + 1); });
    requested = false;
    EXPECT_EQ(ended, isShort ? "no error" : "TEST:ended");
    if (isShort) continue;
    EXPECT_EQ(takeSnapshot(*stream), before);
    EXPECT_EQ(stream->drawCounts().drawn(), counted);
    EXPECT_EQ(randstream::drawnInThread(), inThread);
  }
}

TEST_P(LongDraw, IsWhatShortOnesWouldHaveDrawn) {
  constexpr std::size_t kWhole = 2 * kUninterrupted + 12345, kPiece = 200'000;
  for (bool const normal : {false, true}) {
    auto const draw = [&](randstream& stream, double* out, std::size_t n) {
      normal ? stream.randnFcn(out, n, false) : stream.randuFcn(out, n);
    };
    std::vector<double> whole(kWhole), pieces(kWhole);
    draw(*make(), whole.data(), kWhole);
    Stream const stream = make();
    for (std::size_t at = 0; at < kWhole; at += kPiece)
      draw(*stream, pieces.data() + at, std::min(kPiece, kWhole - at));
    EXPECT_TRUE(whole == pieces) << (normal ? "normals" : "uniforms");
  }
}

constexpr char const* kGenerators[] = {
#define TFL_GENERATOR(name, ...) #name,
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR
};
INSTANTIATE_TEST_SUITE_P(Generators, LongDraw, testing::ValuesIn(kGenerators));

TEST_F(Interruption, LetsShortDrawsFinish) {
  requested = true;
  for (char const* const name : {"mt19937ar", "philox4x32_10"}) {
    Stream const stream(mrCreateRNGStream(name, 1, 0, 7, nullptr, 0));
    for (Row const& row : kDraws) {
      if (std::string_view(row.name).starts_with("randperm")) continue;  // the host's sort may end
      EXPECT_NO_THROW(row.draw(*stream, kUninterrupted)) << row.name;
    }
  }
}

TEST_F(Interruption, AsksNoMoreOfAGeneratorFromElsewhere) {
  testing_support::Script script;
  script.uniforms.assign(kUninterrupted + 1, 0.5);
  randstream stream("scripted", 7, new testing_support::ScriptedPlugin(script), 1, 0);
  std::vector<double> values(kUninterrupted + 1);
  requested = true;
  EXPECT_NO_THROW(stream.randuFcn(values.data(), values.size()));
  EXPECT_THAT(script.requests, testing::ElementsAre(kUninterrupted + 1));
}

}  // namespace

#include <gmock/gmock.h>

#include "rng/randstream.h"
#include "tests/support/identifiers.h"
#include "tests/support/scripted_plugin.h"

namespace {

using ::testing::ElementsAre;
using testing_support::identifierOf;
using testing_support::Script;
using testing_support::ScriptedPlugin;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class Randi : public ::testing::Test {
 protected:
  template <class T>
  std::vector<T> draw(double lo, double hi, std::vector<double> uniforms) {
    script.uniforms = std::move(uniforms);
    script.used = 0;
    std::unique_ptr<T[]> out(new T[script.uniforms.size()]);
    stream.randiFcn(lo, hi, out.get(), script.uniforms.size());
    return std::vector<T>(out.get(), out.get() + script.uniforms.size());
  }

  Script script;
  randstream stream{"scripted", 0, new ScriptedPlugin(script), 1, 0};
};

TEST_F(Randi, LimitsAreCheckedInOrderBeforeAnyDrawAlsoForNoValues) {
  const struct {
    double lo, hi;
    char const* key;
  } cases[] = {
      {2, 1, "invalidLimits"},
      {kNaN, 1, "invalidLimits"},
      {1, kNaN, "invalidLimits"},
      {0.5, 2, "invalidLimits"},
      {1, 2.5, "invalidLimits"},
      {0.5, kInfinity, "invalidLimits"},
      {-kInfinity, 0, "LimitsTooLarge"},
      {1, kInfinity, "LimitsTooLarge"},
      {-0x1p53, 0, "LimitsTooLarge"},
      {0, 0x1p53, "LimitsTooLarge"},
      {-0x1p53 + 1, 0x1p53 - 1, "RangeTooLarge"},
      {0, 0x1p53 - 1, "RangeTooLarge"},
  };
  for (auto const& c : cases)
    for (const std::uint64_t n : {0UL, 1UL}) {
      double out = 0;
      EXPECT_EQ(identifierOf([&] { stream.randiFcn(c.lo, c.hi, &out, n); }),
                std::string("TALVOR:RandStream:randi:") + c.key)
          << c.lo << ' ' << c.hi;
    }
  EXPECT_TRUE(script.requests.empty());
  EXPECT_EQ(checkRandiLimits(1, 0x1p53 - 1), 0x1p53 - 1);
  EXPECT_EQ(checkRandiLimits(-3, -3), 1);
}

TEST_F(Randi, ScalesAndTruncatesOneUniformEach) {
  EXPECT_THAT(draw<double>(1, 6, {0x1p-53, 1.0 / 6, 0.5, 1 - 0x1p-53}), ElementsAre(1, 2, 4, 6));
  EXPECT_THAT(draw<double>(-10, -1, {0x1p-53, 0.95}), ElementsAre(-10, -1));
  EXPECT_THAT(draw<double>(3, 3, {0.1, 0.9}), ElementsAre(3, 3));
  EXPECT_THAT(script.requests, ElementsAre(4, 2, 2));
}

TEST_F(Randi, LargestRangesStayExact) {
  // 2^53-1 values: products of 2^52 and more are whole; below they are truncated.
  EXPECT_THAT(draw<double>(0, 0x1p53 - 2, {1 - 0x1p-53, 0x1p-53, 0.75}),
              ElementsAre(0x1p53 - 2, 0, 6755399441055743.0));
  EXPECT_THAT(draw<double>(1, 0x1p52, {1 - 0x1p-53, 0.5}), ElementsAre(0x1p52, 0x1p51 + 1));
}

TEST_F(Randi, AntitheticMirrorsTheIntegerWithinTheRange) {
  stream.setAntithetic(true);
  EXPECT_THAT(draw<double>(1, 10, {0x1p-53, 0.35, 0.95}), ElementsAre(10, 7, 1));
  EXPECT_THAT(draw<int>(-5, 4, {0x1p-53, 0.95}), ElementsAre(4, -5));
}

template <class T>
class RandiSaturation : public Randi {};
using IntegerElements =
    ::testing::Types<signed char, unsigned char, short, unsigned short, int, unsigned int>;
TYPED_TEST_SUITE(RandiSaturation, IntegerElements);

TYPED_TEST(RandiSaturation, ClampsAtTheTypesBounds) {
  using T = TypeParam;
  constexpr double kMin = std::numeric_limits<T>::min();
  constexpr double kMax = std::numeric_limits<T>::max();
  const auto one = [&](double lo, double hi, double u) {
    return this->template draw<T>(lo, hi, {u})[0];
  };
  EXPECT_EQ(one(kMin - 2, kMin, 0x1p-53), std::numeric_limits<T>::min());
  EXPECT_EQ(one(kMax, kMax + 2, 0.9), std::numeric_limits<T>::max());
  EXPECT_EQ(one(0, 0x1p52, 0.9), std::numeric_limits<T>::max());
  EXPECT_EQ(one(-0x1p52, 0, 0.1), std::numeric_limits<T>::min());
  EXPECT_EQ(one(kMax - 1, kMax - 1, 0.5), std::numeric_limits<T>::max() - 1);
  EXPECT_EQ(one(kMin + 1, kMin + 1, 0.5), std::numeric_limits<T>::min() + 1);
}

TEST_F(Randi, LogicalAndFloatElements) {
  EXPECT_THAT(draw<bool>(-1, 2, {0.1, 0.3, 0.6, 0.9}), ElementsAre(false, false, true, true));
  EXPECT_THAT(draw<float>(16777217, 16777217, {0.5}), ElementsAre(16777216.0F));
}

TEST_F(Randi, DrawsInChunks) {
  script.uniforms.assign(250, 0.5);
  std::vector<int> out(250);
  stream.randiFcn(1, 3, out.data(), out.size());
  EXPECT_THAT(script.requests, ElementsAre(100, 100, 50));
  EXPECT_EQ(out, std::vector<int>(250, 2));
}

}  // namespace

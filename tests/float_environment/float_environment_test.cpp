// The floating-point environment of the program does not show in what is drawn, and is the
// program's again afterwards.

#include "tfl_rng/float_environment.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "golden/cases.h"
#include "golden/check.h"
#include "rng/mr_functions.h"
#include "tfl_rng/elementary.h"
#include "tfl_rng/generator_catalogue.h"
#include "tfl_rng/normal_quantile.h"

namespace {

struct Environment {
  char const* name;
  int rounding;
  bool flushes;  // denormals, where the machine can
};
constexpr Environment kEnvironments[] = {
    {"default", FE_TONEAREST, false}, {"upward", FE_UPWARD, false},
    {"downward", FE_DOWNWARD, false}, {"towardZero", FE_TOWARDZERO, false},
    {"flushing", FE_TONEAREST, true}, {"upwardFlushing", FE_UPWARD, true},
};

#if defined(__SSE2__)
constexpr unsigned kFlush = 0x8040;
bool flushes() { return (_mm_getcsr() & kFlush) == kFlush; }
void flush() { _mm_setcsr(_mm_getcsr() | kFlush); }
#elif defined(__aarch64__)
constexpr std::uint64_t kFlush = 1 << 24;
std::uint64_t fpcr() {
  std::uint64_t value;
  asm volatile("mrs %0, fpcr" : "=r"(value));
  return value;
}
bool flushes() { return (fpcr() & kFlush) != 0; }
void flush() { asm volatile("msr fpcr, %0" : : "r"(fpcr() | kFlush)); }
#else
bool wanted = false;
bool flushes() { return wanted; }
void flush() { wanted = true; }
#endif

class FloatEnvironments : public testing::TestWithParam<Environment> {
 protected:
  void SetUp() override {
    std::fegetenv(&before_);
    if (GetParam().flushes) flush();
    std::fesetround(GetParam().rounding);
  }
  void TearDown() override {
    EXPECT_EQ(std::fegetround(), GetParam().rounding);
    EXPECT_EQ(flushes(), GetParam().flushes);
    std::fesetenv(&before_);
  }

 private:
  std::fenv_t before_;
};

// Every row of the table, on threads that this environment has started.
TEST_P(FloatEnvironments, GoldenRowsHold) {
  golden::Setting setting = golden::settings().front();
  setting.threads = 2;
  for (char const* const generator : golden::generators()) {
    if (std::string_view(generator) == "library") continue;  // without a stream
    golden::Result const result = golden::check(setting, generator);
    for (auto const& row : result.differences) ADD_FAILURE() << generator << " " << row.name;
    EXPECT_GT(result.rows, 0u);
  }
}

// Straight at the streams and functions, where no evaluation around them sees to it.
std::vector<double> drawn(char const* generator) {
  std::vector<double> out(50'000);
  double* at = out.data();
  auto const next = [&](std::size_t n) { return std::exchange(at, at + n); };
  std::unique_ptr<randstream> const stream(mrCreateRNGStream(generator, 1, 0, 7, nullptr, 0));
  for (char const* const method : {"Ziggurat", "Polar", "Inversion"}) {
    stream->setRandnAlg(method);
    stream->randnFcn(next(5'000), 5'000, true);
  }
  stream->randnFcn(reinterpret_cast<float*>(next(500)), 1'000, true);
  stream->randuFcn(reinterpret_cast<float*>(next(500)), 1'000);
  stream->randiFcn(-0x1p51, 0x1p51, next(1'000), 1'000);
  stream->randiFcn(0, 0x1p25, reinterpret_cast<float*>(next(500)), 1'000);
  stream->randpermFcn(next(1'000), 1'000);
  stream->randkpermFcn(next(100), 100, 0x1p52);
  stream->randkpermFcn(next(50), 50, 101);
  stream->advance(12'345);
  stream->randuFcn(next(20'000), 20'000);
  *next(1) = checkRandiLimits(-0x1p51, 0x1p51);
  std::vector<double> quantiles(1'000);
  for (std::size_t i = 0; i < quantiles.size(); ++i)
    quantiles[i] = (static_cast<double>(i) + 0.5) * 0x1p-10;
  out.insert(out.end(), quantiles.begin(), quantiles.end());
  tfl_rng::normalQuantileInPlace(out.data() + out.size() - 1'000, 1'000);
  out.insert(out.end(), quantiles.begin(), quantiles.end());
  tfl_rng::pinnedLogInPlace(out.data() + out.size() - 1'000, 1'000);
  return out;
}

TEST_P(FloatEnvironments, StreamsDrawAsEver) {
  for (tfl_rng::Generator const& generator : tfl_rng::generators()) {
    std::vector<double> const values = drawn(generator.name);
    std::fenv_t own;
    std::fegetenv(&own);
    std::fesetenv(FE_DFL_ENV);
    bool const same = values == drawn(generator.name);
    std::fesetenv(&own);
    EXPECT_TRUE(same) << generator.name;
  }
}

INSTANTIATE_TEST_SUITE_P(, FloatEnvironments, testing::ValuesIn(kEnvironments),
                         [](auto const& one) { return std::string(one.param.name); });

}  // namespace

// Measures the error of pinnedExp and pinnedLog against quadruple precision (g++ on x86-64):
//   g++ -std=gnu++20 -O2 -ffp-contract=off -I. tools/measure_elementary.cpp
//       tfl_rng/elementary.cpp -lquadmath -o measure && ./measure 10000000

#include <quadmath.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "tfl_rng/elementary.h"

namespace {

using Function = double (*)(double);
using Exact = __float128 (*)(__float128);

double errorInUlp(double value, __float128 exact) {
  const double ulp = std::ldexp(1.0, std::ilogb(static_cast<double>(exact)) - 52);
  return static_cast<double>(fabsq((value - exact) / ulp));
}

template <class Argument>
void measure(char const* what, Function f, Exact exact, Argument argument, int count) {
  std::mt19937_64 bits(1);
  double worst = 0, at = 0;
  for (int i = 0; i < count; ++i) {
    const double x = argument(bits);
    const double error = errorInUlp(f(x), exact(x));
    if (error > worst) worst = error, at = x;
  }
  std::printf("%-24s %.5f ulp at %a\n", what, worst, at);
}

auto between(double low, double high) {
  return [=](auto& bits) { return std::uniform_real_distribution<double>(low, high)(bits); };
}

double anyPositiveNormal(std::mt19937_64& bits) {
  for (;;) {
    const double x = std::bit_cast<double>(bits() >> 1);
    if (std::isnormal(x)) return x;
  }
}

}  // namespace

int main(int argc, char** argv) {
  const int count = argc > 1 ? std::atoi(argv[1]) : 1'000'000;
  using tfl_rng::pinnedExp, tfl_rng::pinnedLog;
  measure("log on (0,1)", pinnedLog, logq, between(0, 1), count);
  measure("log on (0.5,2)", pinnedLog, logq, between(0.5, 2), count);
  measure("log on (0.98,1.04)", pinnedLog, logq, between(0.98, 1.04), count);
  measure("log on (1.03,1.035)", pinnedLog, logq, between(1.03, 1.035), count);
  measure("log of any", pinnedLog, logq, anyPositiveNormal, count);
  measure("exp on (-708,708)", pinnedExp, expq, between(-708, 708), count);
  measure("exp on (-8,0)", pinnedExp, expq, between(-8, 0), count);
  measure("exp on (-1,1)", pinnedExp, expq, between(-1, 1), count);
}

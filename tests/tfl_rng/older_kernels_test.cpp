// The kernels of mcg16807, shr3cong and swb2712 equal their scalar forms, bit for bit, on every
// instruction set.

#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

#include "tests/support/every_target.h"
#include "tfl_rng/kernels/mcg16807.h"
#include "tfl_rng/kernels/mcg16807_reference.h"
#include "tfl_rng/kernels/shr3cong.h"
#include "tfl_rng/kernels/shr3cong_reference.h"
#include "tfl_rng/kernels/swb2712.h"
#include "tfl_rng/kernels/swb2712_reference.h"
#include "tfl_rng/swb2712.h"

namespace {

namespace mcg = tfl_rng::minimal_standard;
namespace shr3 = tfl_rng::shr3cong_kernel;
namespace swb = tfl_rng::swb2712_kernel;
using tfl_rng::Form, tfl_rng::Full, tfl_rng::Reduced, tfl_rng::Stores;

template <class Precision>
constexpr Form kForm{std::is_same_v<Precision, Full>};

// For each generator and precision mode: states to start from, and both forms as
// fill(state, out, n), which leave the state behind.

template <class Precision>
struct Mcg {
  static std::vector<std::uint32_t> states() { return {1, 2, 1144108930, 0x7ffffffd, 0x7ffffffe}; }
  static void scalar(std::uint32_t& word, double* out, std::size_t n) {
    word = mcg::reference::fill(Precision{}, word, out, n);
  }
  static void vector(std::uint32_t& word, double* out, std::size_t n) {
    word = mcg::fill(kForm<Precision>, Stores::cached, word, out, n);
  }
};

template <class Precision>
struct Shr3 {
  using State = shr3::State;
  static std::vector<State> states() {
    return {{362436069, 521288629}, {0, 1}, {0xffffffff, 0}, {1, 0x80000000}, {0, 0xffffffff}};
  }
  static void scalar(State& state, double* out, std::size_t n) {
    shr3::reference::fill(Precision{}, state, out, n);
  }
  static void vector(State& state, double* out, std::size_t n) {
    shr3::fill(kForm<Precision>, Stores::cached, state, out, n);
  }
};

struct Swb {
  using State = swb::State;
  // Ordinary states, equal lags (where borrows pass from draw to draw), and lags off the grid.
  static std::vector<State> states() {
    auto const seeded = [](std::uint32_t seed) { return tfl_rng::swb2712(seed, true).state(); };
    std::vector<State> result = {seeded(0), seeded(12345), seeded(1)};
    for (auto const& [value, borrow] :
         {std::pair(0.5, false), std::pair(0.5, true), std::pair(0x1p-53, true),
          std::pair(1 - 0x1p-53, false), std::pair(0x1.8000000000001p-3, true)}) {
      result.push_back({{}, borrow, 7, 0xfffffff0});
      result.back().lags.fill(value);
    }
    // The first draws subtract a value from an equal one.
    State& edges = result[2];
    edges.position = 31;
    edges.borrow = true;
    for (std::size_t i = 0; i < 8; ++i)
      edges.lags[(31 + 20 + i) % 32] = edges.lags[(31 + 5 + i) % 32];
    // Lags of 1 to 3 units: differences of 0 and 1, with borrows and without.
    result.push_back({{}, true, 5, 3});
    for (std::size_t i = 0; i < 32; ++i)
      result.back().lags[i] = static_cast<double>(i * i % 7 % 3 + 1) * 0x1p-53;
    // Draw `first` alone borrows, and draws with equal values pass that on: where a vector begins
    // behind scalar draws, and the next one asks what has become of its borrow.
    for (const std::size_t first : {2, 4}) {
      State borrows = seeded(3);
      auto const near = [&](std::size_t draw) -> double& { return borrows.lags[20 + draw]; };
      auto const far = [&](std::size_t draw) { return borrows.lags[5 + draw]; };
      near(first - 1) = 1 - 0x1p-53;
      near(first) = 0x1p-53;
      for (std::size_t draw = first + 1; draw < first + 4; ++draw) near(draw) = far(draw);
      result.push_back(borrows);
    }
    return result;
  }
  static void scalar(State& state, double* out, std::size_t n) {
    swb::reference::fill(state, out, n);
  }
  static void vector(State& state, double* out, std::size_t n) { swb::fill(state, out, n); }
};

template <class Generator>
class OlderKernel : public testing::Test {};
using Generators = testing::Types<Mcg<Reduced>, Mcg<Full>, Shr3<Reduced>, Shr3<Full>, Swb>;
TYPED_TEST_SUITE(OlderKernel, Generators);

// Every count around the vectors and blocks of all targets, and a value behind the end.
TYPED_TEST(OlderKernel, EqualsTheScalarFormOnEveryTarget) {
  every_target::run([] {
    for (auto const& start : TypeParam::states()) {
      for (std::size_t n = 0; n <= 600; ++n) {
        std::vector<double> expected(n + 1, -1), actual(n + 1, -1);
        auto scalar = start, vector = start;
        TypeParam::scalar(scalar, expected.data(), n);
        TypeParam::vector(vector, actual.data(), n);
        ASSERT_EQ(actual, expected) << n;
        ASSERT_EQ(vector, scalar) << n;
      }
    }
  });
}

}  // namespace

// The delivery kernels equal their scalar forms on every instruction set.

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "rng/kernels/delivery.h"
#include "tests/support/every_target.h"

namespace {

using delivery::Range;

// Uniforms of every size, the borders of (0,1) and of the float formats among them.
std::vector<double> uniforms() {
  std::vector<double> values = {0x1p-53,     0x1p-60,     0x1p-149, 0x1p-127,       0x1p-160,
                                1 - 0x1p-53, 1 - 0x1p-25, 0x1p-25,  1 - 0x1p-24,    0x1p-24,
                                0.5,         1 - 0x1p-52, 0x1p-52,  1 - 3 * 0x1p-26};
  std::mt19937_64 bits(1);
  while (values.size() < 1000)
    values.push_back((static_cast<double>(bits() >> 12) + 0.5) * 0x1p-52);
  return values;
}

TEST(DeliveryKernel, FloatsEqualTheScalarForm) {
  const auto u = uniforms();
  every_target::run([&] {
    for (const bool mirrored : {false, true})
      for (std::size_t n = 0; n <= u.size(); n = n < 40 ? n + 1 : n + 60) {
        std::vector<float> out(n + 1, -7);
        delivery::toFloats(u.data(), mirrored, out.data(), n);
        for (std::size_t i = 0; i < n; ++i)
          ASSERT_EQ(out[i], delivery::asFloat(mirrored ? delivery::mirror(u[i]) : u[i])) << u[i];
        ASSERT_EQ(out[n], -7);
      }
  });
}

TEST(DeliveryKernel, MirroredAndChangedValuesEqualTheScalarForms) {
  const auto u = uniforms();
  every_target::run([&] {
    for (std::size_t n = 0; n <= u.size(); n = n < 40 ? n + 1 : n + 60) {
      std::vector<double> mirrored(u);
      delivery::mirrorInPlace(mirrored.data(), n);
      for (std::size_t i = 0; i < u.size(); ++i)
        ASSERT_EQ(mirrored[i], i < n ? delivery::mirror(u[i]) : u[i]) << i;
      for (const delivery::Change change :
           {delivery::Change{false, false}, {false, true}, {true, false}, {true, true}}) {
        std::vector<float> floats(n + 1, -7);
        std::vector<double> doubles(u);
        doubles[0] = 0;
        delivery::toNormals(u.data(), change, floats.data(), n);
        delivery::toNormals(doubles.data(), change, doubles.data(), n);
        for (std::size_t i = 0; i < n; ++i) {
          ASSERT_EQ(floats[i], static_cast<float>(delivery::changed(u[i], change))) << u[i];
          ASSERT_EQ(doubles[i], delivery::changed(i == 0 ? 0 : u[i], change)) << u[i];
          ASSERT_EQ(std::signbit(doubles[i]), change.negate);
        }
        ASSERT_EQ(floats[n], -7);
      }
    }
  });
}

template <class T>
class DeliveryKernelElements : public ::testing::Test {};
#define ELEMENT(T, classID) , T
template <class First, class... Rest>
using TypesAfter = ::testing::Types<Rest...>;
using Elements = TypesAfter<void RNG_INTEGER_ELEMENTS(ELEMENT)>;
TYPED_TEST_SUITE(DeliveryKernelElements, Elements);

TYPED_TEST(DeliveryKernelElements, EqualTheScalarForm) {
  using T = TypeParam;
  const auto u = uniforms();
  const Range ranges[] = {{1, 6, false},         {0, 0x1p53 - 1, false},
                          {1, 0x1p52, true},     {-0x1p52, 0x1p53 - 1, false},
                          {-3e9, 9e9, true},     {-40000, 80001, false},
                          {-300, 601, true},     {5, 1, true},
                          {-1, 3, false},        {0, 0x1p31, true},
                          {0, 0x1p32, false},    {-0x1p31, 0x1p31, false},
                          {-5, 0x1p31, true},    {-40000, 80001, true},
                          {0x1p31 - 5, 5, false}};
  every_target::run([&] {
    for (Range const& range : ranges)
      for (const std::size_t n : {0UL, 1UL, 7UL, 8UL, 9UL, 100UL, 1000UL}) {
        std::unique_ptr<T[]> out(new T[n + 1]);
        out[n] = T{1};
        delivery::toElements(u.data(), range, out.get(), n);
        for (std::size_t i = 0; i < n; ++i)
          ASSERT_EQ(out[i], storeAs<T>(delivery::valueFor(u[i], range)))
              << u[i] << " in " << range.lo << ", " << range.count;
        ASSERT_EQ(out[n], T{1});
      }
  });
}

}  // namespace

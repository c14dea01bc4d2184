// The shortcuts for native code: the same numbers as the builtins, and their own size rules.

#include <gmock/gmock.h>

#include <limits>

#include "builtins/builtins.h"
#include "tests/support/calls.h"
#include "tests/support/identifiers.h"
#include "vmstate/global_stream.h"

namespace {

using namespace testing_support;
using Sizes = matrix::typed_row_vector<double>;

class Variants : public VmTest {
 protected:
  // The elements of what `draw` returns from a fresh global stream.
  template <class Draw>
  std::vector<double> fresh(Draw&& draw) {
    call(clearGlobalRandStream, {}, 0);
    return numbers(*draw());
  }
};

TEST_F(Variants, DrawWhatTheBuiltinsDraw) {
  Sizes const sizes{2, 3, 2};
  EXPECT_EQ(fresh([] { return mathrng::randVariant(3); }),
            fresh([] { return call(mathrngRandFcn, args(3)); }));
  EXPECT_EQ(fresh([] { return mathrng::randnVariant(2, 5); }),
            fresh([] { return call(mathrngRandnFcn, args(2, 5)); }));
  EXPECT_EQ(fresh([&] { return mathrng::randnVariant(&sizes); }),
            fresh([] { return call(mathrngRandnFcn, args(2, 3, 2)); }));
  EXPECT_EQ(fresh([] { return embedded_host::makeScalar(mathrngRandiVariant(6)); }),
            fresh([] { return call(mathrngRandiFcn, args(6)); }));
  Sizes const limits{-3, 9};
  EXPECT_EQ(fresh([&] { return embedded_host::makeScalar(mathrngRandiVariant(&limits)); }),
            fresh([] {
              return call(mathrngRandiFcn, args(row({-3, 9})));
            }));
  EXPECT_EQ(fresh([] { return randVariant(7); }),
            fresh([] { return call(mathrngRandpermFcn, args(7)); }));
  EXPECT_EQ(fresh([] { return randVariant(7, 3); }),
            fresh([] { return call(mathrngRandpermFcn, args(7, 3)); }));
}

TEST_F(Variants, HaveSizesAsGiven) {
  Sizes const sizes{2, 3, 2};
  Sizes const negative{-2, 3};
  EXPECT_EQ(shapeOf(*mathrng::randVariant(0.0)), "0x0 double");
  EXPECT_EQ(shapeOf(*mathrng::randVariant(-3)), "0x0 double");
  EXPECT_EQ(shapeOf(*mathrng::randVariant(2, -1)), "2x0 double");
  EXPECT_EQ(shapeOf(*mathrng::randVariant(&sizes)), "2x3x2 double");
  EXPECT_EQ(shapeOf(*mathrng::randnVariant(&negative)), "0x3 double");
  EXPECT_EQ(shapeOf(*randVariant(-4)), "1x0 double");
  EXPECT_EQ(shapeOf(*randVariant(4, 0)), "1x0 double");
}

TEST_F(Variants, RefuseWithoutDrawing) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  Sizes const three{1, 2, 3};
  Sizes const fraction{2, 1.5};
  std::size_t const before = globalState();
  EXPECT_EQ(identifierOf([] { mathrng::randVariant(2.5); }), "TALVOR:NonIntegerInput");
  EXPECT_EQ(identifierOf([] { mathrng::randnVariant(2, 2.5); }), "TALVOR:NonIntegerInput");
  EXPECT_EQ(identifierOf([] { mathrng::randVariant(2.5, kNaN); }), "TALVOR:NonIntegerInput");
  EXPECT_EQ(identifierOf([] { mathrng::randVariant(kNaN); }), "TALVOR:index:NaN");
  EXPECT_EQ(identifierOf([&] { mathrng::randVariant(&fraction); }), "TALVOR:size:NotWhole");
  EXPECT_EQ(identifierOf([&] { mathrngRandiVariant(&three); }), "TALVOR:randi:invalidLimits");
  EXPECT_EQ(identifierOf([] { mathrngRandiVariant(0.5); }),
            "TALVOR:RandStream:randi:invalidLimits");
  EXPECT_EQ(identifierOf([] { randVariant(2.5); }), "TALVOR:NonIntegerInput");
  EXPECT_EQ(identifierOf([] { randVariant(-1, kNaN); }), "TALVOR:randperm:inputType");
  EXPECT_EQ(identifierOf([] { randVariant(0x1p53, 1); }), "TALVOR:randperm:inputNTooLarge");
  EXPECT_EQ(identifierOf([] { randVariant(5, 6); }), "TALVOR:randperm:inputKTooLarge");
  EXPECT_EQ(globalState(), before);
}

TEST(Module, LoadsAndUnloadsWithoutAVirtualMachine) {
  TLInitialize_libtvmathrng();
  TLTerminate_libtvmathrng();
}

}  // namespace

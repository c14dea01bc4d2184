#include "builtins/builtins.h"
#include "builtins/dimensions.h"
#include "builtins/policy.h"
#include "builtins/sampling.h"

using namespace builtins;

namespace mathrng {

txArrayPtr randVariant(double n) { return sampleVariant<Uniform>(GlobalStream(), square(n)); }
txArrayPtr randVariant(double m, double n) {
  return sampleVariant<Uniform>(GlobalStream(), rectangle(m, n));
}
txArrayPtr randVariant(matrix::typed_row_vector<double> const* sizes) {
  return sampleVariant<Uniform>(GlobalStream(), dimensionsFrom(*sizes));
}

txArrayPtr randnVariant(double n) { return sampleVariant<Normal>(GlobalStream(), square(n)); }
txArrayPtr randnVariant(double m, double n) {
  return sampleVariant<Normal>(GlobalStream(), rectangle(m, n));
}
txArrayPtr randnVariant(matrix::typed_row_vector<double> const* sizes) {
  return sampleVariant<Normal>(GlobalStream(), dimensionsFrom(*sizes));
}

}  // namespace mathrng

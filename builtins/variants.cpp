// The shortcuts for native code: sizes, limits and counts come as numbers.

#include "builtins/builtins.h"
#include "builtins/dimensions.h"
#include "builtins/permutations.h"
#include "builtins/policy.h"
#include "builtins/randi_arguments.h"
#include "builtins/sampling.h"
#include "builtins/stream_methods.h"

using namespace builtins;

namespace {

ObjectStream streamOf(txArray const* object) { return ObjectStream(&object); }

double drawInteger(Limits const& limits) {
  double value;
  acquireGlobalRandStream()->randiFcn(limits.low, limits.high, &value, 1);
  return value;
}

}  // namespace

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

namespace RandStream {

// The object comes first: an invalid one is reported whatever the sizes are.
txArrayPtr randVariant(txArray const* object, double n) {
  ObjectStream const source = streamOf(object);
  return sampleVariant<Uniform>(source, square(n));
}
txArrayPtr randVariant(txArray const* object, double m, double n) {
  ObjectStream const source = streamOf(object);
  return sampleVariant<Uniform>(source, rectangle(m, n));
}
txArrayPtr randVariant(txArray const* object, matrix::typed_row_vector<double> const* sizes) {
  ObjectStream const source = streamOf(object);
  return sampleVariant<Uniform>(source, dimensionsFrom(*sizes));
}

txArrayPtr randnVariant(txArray const* object, double n) {
  ObjectStream const source = streamOf(object);
  return sampleVariant<Normal>(source, square(n));
}
txArrayPtr randnVariant(txArray const* object, double m, double n) {
  ObjectStream const source = streamOf(object);
  return sampleVariant<Normal>(source, rectangle(m, n));
}
txArrayPtr randnVariant(txArray const* object, matrix::typed_row_vector<double> const* sizes) {
  ObjectStream const source = streamOf(object);
  return sampleVariant<Normal>(source, dimensionsFrom(*sizes));
}

}  // namespace RandStream

double mathrngRandiVariant(double imax) {
  Limits const limits{1, imax};
  checkRange(limits, 1);
  return drawInteger(limits);
}

double mathrngRandiVariant(matrix::typed_row_vector<double> const* limits) {
  if (limits->size() != 2) errors::raise(TALVOR::randi::invalidLimits(), 1);
  Limits const both{(*limits)[0], (*limits)[1]};
  checkRange(both, 1);
  return drawInteger(both);
}

txArrayPtr randVariant(double n) { return permute(GlobalStream(), toDimension(n)); }

txArrayPtr randVariant(double n, double k) {
  return select(GlobalStream(), checkSelection(kPermutationErrors<RandpermKeys>, n, k, 1));
}

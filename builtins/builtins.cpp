#include "builtins/builtins.h"

#include "builtins/integers.h"
#include "builtins/legacy_syntax.h"
#include "builtins/permutations.h"
#include "builtins/policy.h"
#include "builtins/sampling.h"

using namespace builtins;

void mathrngRandFcn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  if (legacyRand(nlhs, plhs, nrhs, prhs)) return;
  sample<Uniform, Builtin<RandKeys>>(nlhs, plhs, nrhs, prhs);
}

void mathrngRandnFcn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  if (legacyRandn(nlhs, plhs, nrhs, prhs)) return;
  sample<Normal, Builtin<RandnKeys>>(nlhs, plhs, nrhs, prhs);
}

void mathrngRandiFcn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  sampleIntegers<Builtin<RandiKeys>>(nlhs, plhs, nrhs, prhs);
}

void mathrngRandpermFcn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  samplePermutation<Builtin<RandpermKeys>>(nlhs, plhs, nrhs, prhs);
}

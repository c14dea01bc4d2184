// The sampling methods of stream objects: the builtins' bodies over the object's own stream.

#include "builtins/stream_methods.h"

#include "builtins/integers.h"
#include "builtins/permutations.h"
#include "builtins/policy.h"
#include "builtins/sampling.h"

namespace RandStream {

using namespace builtins;

void randstreamRand(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  sample<Uniform, Method<ObjectRandKeys>>(nlhs, plhs, nrhs, prhs);
}

void randn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  sample<Normal, Method<ObjectRandnKeys>>(nlhs, plhs, nrhs, prhs);
}

void randi(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  sampleIntegers<Method<ObjectRandiKeys>>(nlhs, plhs, nrhs, prhs);
}

void randperm(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  samplePermutation<Method<ObjectRandpermKeys>>(nlhs, plhs, nrhs, prhs);
}

}  // namespace RandStream

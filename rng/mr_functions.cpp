#include "rng/mr_functions.h"

#include "rng/acquire_global_stream.h"
#include "rng/stream_handle.h"
#include "tfl_rng/minimal_standard.h"

randstream* mrGetGlobalStream() { return acquireGlobalRandStream().get(); }

void mrRandu(double* out, std::uint64_t n) { acquireGlobalRandStream()->randuFcn(out, n); }

void mrRandn(double* out, std::uint64_t n) { acquireGlobalRandStream()->randnFcn(out, n, false); }

void mrRandi(double* out, std::uint64_t n, double lo, double hi) {
  acquireGlobalRandStream()->randiFcn(lo, hi, out, n);
}

void mrRandperm(double* out, std::uint64_t n) { acquireGlobalRandStream()->randpermFcn(out, n); }

void mrRandkperm(double* out, std::uint64_t k, double n) {
  acquireGlobalRandStream()->randkpermFcn(out, k, n);
}

randstream* mrGetCPPRandStreamFromTxArray(txArray const* object) {
  if (!object || object->isEmpty()) return mrGetGlobalStream();
  return streamOfObject(*object).get();
}

double mrV4Urand(unsigned int* state) {
  *state = tfl_rng::minimalStandardStep(*state);
  return tfl_rng::minimalStandardUniform(*state);
}

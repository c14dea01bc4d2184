#pragma once

// The exported plain functions: random numbers for native code of the host.

#include "host/export.h"
#include "rng/randstream.h"

extern "C" {

// Makes a stream of a generator by name (case ignored); the caller owns it. `streamIndex` counts
// from 0; `nParams` must be 0. Errors: create:UnknownRNGType and those of the generator's factory.
TV_EXPORT randstream* mrCreateRNGStream(char const* type, std::uint64_t numStreams,
                                        std::uint64_t streamIndex, unsigned int seed,
                                        std::uint64_t* params, std::uint64_t nParams);

// The functions below work on the current VM's global stream, which they make on first use, and
// share it for the length of the call.

// The global stream, borrowed.
TV_EXPORT randstream* mrGetGlobalStream();
TV_EXPORT void mrRandu(double* out, std::uint64_t n);
TV_EXPORT void mrRandn(double* out, std::uint64_t n);
TV_EXPORT void mrRandi(double* out, std::uint64_t n, double lo, double hi);
TV_EXPORT void mrRandperm(double* out, std::uint64_t n);
TV_EXPORT void mrRandkperm(double* out, std::uint64_t k, double n);

// The stream behind a host RandStream object, borrowed; the global stream for an empty array.
// Errors: "TALVOR:RandStream:InvalidHandle".
TV_EXPORT randstream* mrGetCPPRandStreamFromTxArray(txArray const* object);

// One step of the minimal standard generator (16807 modulo 2^31 - 1) on the caller's state; returns
// the new state times 4.656612875245797e-10. A state of 0 stays 0 and yields 0.
TV_EXPORT double mrV4Urand(unsigned int* state);

}  // extern "C"

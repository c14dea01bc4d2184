#pragma once

// The library's entry points for the host: the builtins that the dispatcher calls, and shortcuts
// for native code.

#include "host/export.h"
#include "host/matrix.h"
#include "host/tx_array.h"

// x = rand(), rand(n), rand(m, n, ...), rand([m n ...]), each followed by nothing, a class name
// ('double', 'single') or 'like' and a prototype: uniforms in (0,1) from the global stream.
// rand(keyword), rand(keyword, value): see legacy_syntax.h.
TV_EXPORT void mathrngRandFcn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);
// The same with standard normals; a complex one has variance 1.
TV_EXPORT void mathrngRandnFcn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);

// x = randi(imax, ...), randi([imin imax], ...): integers of [1, imax] or [imin, imax], with sizes,
// class name or prototype as above; any class but int64 and uint64.
TV_EXPORT void mathrngRandiFcn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);
// x = randperm(n): a permutation of 1..n. x = randperm(n, k): k distinct values of 1..n.
TV_EXPORT void mathrngRandpermFcn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);

// One integer of [1, imax], or of the limits [imin imax]. Errors: those of randi's limits.
TV_EXPORT double mathrngRandiVariant(double imax);
TV_EXPORT double mathrngRandiVariant(matrix::typed_row_vector<double> const* limits);
// As randperm(n) and randperm(n, k). For the first a negative n counts as 0 and a fraction is
// "TALVOR:NonIntegerInput".
TV_EXPORT txArrayPtr randVariant(double n);
TV_EXPORT txArrayPtr randVariant(double n, double k);

namespace mathrng {

// Double arrays from the global stream: n-by-n, m-by-n, or with the dimensions of a row of sizes. A
// negative size counts as 0. Errors: "TALVOR:NonIntegerInput" for fractions, the host's size
// errors.
TV_EXPORT txArrayPtr randVariant(double n);
TV_EXPORT txArrayPtr randVariant(double m, double n);
TV_EXPORT txArrayPtr randVariant(matrix::typed_row_vector<double> const* sizes);
TV_EXPORT txArrayPtr randnVariant(double n);
TV_EXPORT txArrayPtr randnVariant(double m, double n);
TV_EXPORT txArrayPtr randnVariant(matrix::typed_row_vector<double> const* sizes);

}  // namespace mathrng

extern "C" {
// Called by the host after loading the library and before unloading it. Both do nothing: all state
// belongs to a virtual machine and is made on first use.
TV_EXPORT void TLInitialize_libtvmathrng();
TV_EXPORT void TLTerminate_libtvmathrng();
}

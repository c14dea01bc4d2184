#pragma once

// The host's sort.

#include "host/export.h"
#include "host/tx_array.h"

// Sorts the double vector prhs[0] ascending: plhs[0] the sorted values, plhs[1] (when nlhs is 2)
// the 1-based positions as doubles. Stable: equal values keep their order; NaN comes last.
TV_EXPORT void mathcoreSortFcn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);

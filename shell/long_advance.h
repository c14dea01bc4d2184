#pragma once

#include "host/tx_array.h"

namespace shell {

// Does what advance(s,n) does when that takes long: for generators that must draw and large n, with
// a line of progress on standard error. An interrupt (Ctrl-C) takes the stream back to where it was
// and raises "TALVOR:language:interrupted". Returns false, with nothing done, for every other call.
bool advancedSlowly(int nrhs, txArray const** prhs);

}  // namespace shell

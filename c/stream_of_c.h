#pragma once

// What stands behind the C interface's handle.

#include <tvmathrng/random.h>
#include <tvmathrng/tvmathrng.h>

struct tvrng_stream {
  tvmathrng::Stream stream;
};

#pragma once

// Marks what libtfl_rng gives to other libraries; everything else, the kernels among it, is hidden.
#define TFL_EXPORT __attribute__((visibility("default")))

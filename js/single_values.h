#pragma once

// Values drawn ahead for a caller that takes them one by one, and the hint of an error: what the
// JavaScript package calls beside the C interface.

#include "c/stream_of_c.h"

extern "C" {

typedef struct tvjs_ahead tvjs_ahead;

// 0 uniforms, 1 normals, 2 whole numbers from `lowest` to `highest`.
typedef int tvjs_kind;

// For one stream, which outlives it.
tvjs_ahead* tvjs_ahead_create(tvrng_stream* stream);
void tvjs_ahead_destroy(tvjs_ahead* ahead);
// Draws n values, each as a call of its own would, and remembers where the stream was. What was
// drawn before counts as taken.
tvrng_status tvjs_ahead_draw(tvjs_ahead* ahead, tvjs_kind kind, double lowest, double highest,
                             size_t n, double* out);
// Takes the stream to where the first `taken` values of the last draw left it.
void tvjs_ahead_give_back(tvjs_ahead* ahead, size_t taken);

// What would work instead of the call that failed last; "" where that is not known. Stays until the
// next call of it.
char const* tvjs_error_hint(void);
}

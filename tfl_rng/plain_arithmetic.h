#pragma once

// Refuses to be compiled where sums and products of doubles would not be those of IEEE 754 as they
// are written, from which other numbers would come without a word.

#include <cfloat>
#include <limits>

#if defined(__FAST_MATH__) || defined(__ASSOCIATIVE_MATH__) || defined(__RECIPROCAL_MATH__) || \
    (defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__)
#error "The same seed would give other numbers: compile without -ffast-math and its parts."
#endif

static_assert(
    FLT_EVAL_METHOD == 0,
    "Doubles are computed in more bits than they have, and the same seed would give other "
    "numbers: on 32-bit x86 compile with -msse2 -mfpmath=sse.");
static_assert(std::numeric_limits<double>::is_iec559 && std::numeric_limits<double>::digits == 53 &&
                  std::numeric_limits<float>::digits == 24,
              "Numbers need the doubles and singles of IEEE 754.");

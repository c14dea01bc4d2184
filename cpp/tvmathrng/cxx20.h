#pragma once

// Says in a sentence what would otherwise be a hundred errors: the missing header ends the
// compilation.
#if __cplusplus < 202002L
#error \
    "tvmathrng needs C++20: compile with -std=c++20. The C interface, tvmathrng/tvmathrng.h, \
serves older standards."
#include <tvmathrng/needs/-std=c++20>
#endif

#pragma once

// Marks a symbol as part of a shared library's interface; everything else is hidden.
#define TV_EXPORT __attribute__((visibility("default")))

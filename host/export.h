#pragma once

// Marks a symbol as part of a shared library's interface; everything else is hidden.
#define TV_EXPORT __attribute__((visibility("default")))
// Takes a member of an exported class out of the interface again.
#define TV_LOCAL __attribute__((visibility("hidden")))

#pragma once

// The one thing that the stream core needs of the VM: its global stream. Defined with the VM state.

#include <memory>

#include "rng/randstream.h"

// The current VM's global stream, made on first use: a clone of the default stream, else from the
// settings. Errors of the settings and of stream creation propagate; nothing is kept then.
std::shared_ptr<randstream> acquireGlobalRandStream();

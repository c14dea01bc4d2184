#pragma once

// Textbook forms of weak generators, written from their published recurrences and used nowhere
// else. That they fail proves that the battery finds faults.

#include "battery/sources.h"

namespace battery {

std::vector<Source> textbookSources();

}  // namespace battery

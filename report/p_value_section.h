#pragma once

#include <string>
#include <vector>

#include "report/plots.h"

namespace report {

// The section that shows all p-values of a page, sorted, against what chance would give.
std::string pValueSection(std::vector<Test> const& tests, double level);

}  // namespace report

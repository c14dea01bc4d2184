#pragma once

// Values as the prompt shows them.

#include <string>
#include <string_view>

#include "host/tx_array.h"

namespace shell {

struct DisplayStyle {
  int width = 80;  // columns of the terminal
  int digits = 6;  // significant digits of numbers: 6, or 15 on request
};

// Scalars and texts on one line that the language reads back (x = int8(5)); everything else under a
// line with size and class. Wide arrays are folded to the width, long ones abbreviated with what
// was left out. Ends in a newline. `name` "" leaves out "name = ".
std::string displayValue(std::string_view name, txArray const& value, DisplayStyle const& style);

// A value in a few words: "0.5", "'text'", "2x3 double".
std::string summarize(txArray const& value, int digits);

}  // namespace shell

#pragma once

#include <string>

#include "host/tx_array.h"

namespace shell {

// The value as one JSON object on one line: class, size, complex, data in column order. Floats have
// 17 significant digits, complex ones are pairs [re,im]; NaN and infinities, which JSON does not
// know, are the texts "NaN", "Inf" and "-Inf". A char array's data is one text, a cell array's are
// objects of this kind; an object has "properties" instead of data.
std::string toJson(txArray const& value);

}  // namespace shell

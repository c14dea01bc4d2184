#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "host/tx_array.h"

namespace shell {

// The value as one JSON object on one line: class, size, complex, data in column order. Floats have
// 17 significant digits, complex ones are pairs [re,im]; NaN and infinities, which JSON does not
// know, are the texts "NaN", "Inf" and "-Inf". A char array's data is one text, a cell array's are
// objects of this kind; an object has "properties" instead of data.
std::string toJson(txArray const& value);

// What programs are told of an error.
struct ErrorFacts {
  struct Place {
    std::size_t line;    // from 1
    std::size_t column;  // from 1, in characters
  };

  std::string identifier;
  std::string message;
  std::string hint = {};  // what would work; "" when that is not known
  bool drawn = false;     // whether numbers were drawn before it
  std::optional<Place> place = {};
};
// {"error":{"identifier":...,"message":...,"hint":...,"drawn":...,"line":...,"column":...}}, in
// which an unknown hint or place is null.
std::string toJson(ErrorFacts const& error);

}  // namespace shell

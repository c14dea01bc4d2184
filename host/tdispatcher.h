#pragma once

// The host's dispatcher: functions of the host language by name.

#include <span>
#include <string_view>

#include "host/export.h"
#include "host/tx_array.h"

class TV_EXPORT Tdispatcher {
 public:
  // Calls the function `name` (a builtin or the constructor of a class). Returns false, with
  // nothing called, when there is none; errors raised by the function reach the caller.
  static bool call(std::string_view name, int nlhs, txArrayPtr* plhs,
                   std::span<txArray const* const> args);
  // Whether there is such a function.
  static bool has(std::string_view name);
};

#pragma once

// Asserting on the identifier of an error.

#include <gtest/gtest.h>

#include <string>

#include "host/except.h"

namespace testing_support {

// The identifier of the host exception that `action` raises, "no error" when it raises none.
template <class Action>
std::string identifierOf(Action&& action) {
  try {
    action();
  } catch (foundation::core::except::AnyException const& error) {
    return error.GetID();
  }
  return "no error";
}

// The arguments that travel with the error, as texts joined by "|".
template <class Action>
std::string argumentsOf(Action&& action) {
  std::string joined;
  try {
    action();
  } catch (foundation::core::except::AnyException const& error) {
    for (auto const& argument : error.GetBaseMsgIDObj().arguments()) {
      if (!joined.empty()) joined += '|';
      auto const* text = std::get_if<std::string>(&argument);
      joined += text ? *text : std::to_string(std::get<double>(argument));
    }
  }
  return joined;
}

}  // namespace testing_support

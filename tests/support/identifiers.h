#pragma once

// Asserting on the identifier of an error.

#include <gtest/gtest.h>

#include <concepts>
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

// The arguments that travel with an error, as texts joined by "|".
inline std::string argumentsOf(foundation::core::except::MessageId const& id) {
  std::string joined;
  for (auto const& argument : id.arguments()) {
    if (!joined.empty()) joined += '|';
    auto const* text = std::get_if<std::string>(&argument);
    joined += text ? *text : std::to_string(std::get<double>(argument));
  }
  return joined;
}
// The same of the error that `action` raises, "" when it raises none.
template <std::invocable Action>
std::string argumentsOf(Action&& action) {
  try {
    action();
  } catch (foundation::core::except::AnyException const& error) {
    return argumentsOf(error.GetBaseMsgIDObj());
  }
  return "";
}

}  // namespace testing_support

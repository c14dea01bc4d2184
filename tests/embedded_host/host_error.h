#pragma once

// Expectations about host errors.

#include <gmock/gmock.h>

#include <string>
#include <utility>

#include "host/except.h"

// The identifier of the host error that `action` ends with; "no error" when it returns.
template <class Action>
std::string errorOf(Action&& action) {
  try {
    std::forward<Action>(action)();
  } catch (foundation::core::except::AnyException const& error) {
    return error.GetID();
  }
  return "no error";
}

#pragma once

#include <span>
#include <string>
#include <string_view>

namespace shell {

// The help of a topic: a function, a property or method of streams, an operator of the prompt; the
// list of all without one. Each has one example that runs as it stands. Raises a fault with the
// nearest topic for an unknown one.
std::string helpText(std::string_view topic, int width);

// The names that help knows beyond the language's own functions.
struct HelpRow {
  char const* name;
  char const* usage;  // forms of the call, separated by newlines
  char const* what;
  char const* example;
};
std::span<HelpRow const> helpRows();

}  // namespace shell

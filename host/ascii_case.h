#pragma once

// Upper and lower case of names: ASCII's, whatever the locale of the process says.

#include <algorithm>
#include <string_view>

namespace ascii_case {

constexpr char lower(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr char upper(char c) noexcept {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// Equality without regard to case; a character beyond ASCII matches nothing but itself.
constexpr bool equal(std::string_view a, std::string_view b) noexcept {
  return std::ranges::equal(a, b, {}, lower, lower);
}

}  // namespace ascii_case

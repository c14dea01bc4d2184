#pragma once

// The options of a command, a row each.

#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace shell {

// Wrong use of the command; exit status 2.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Option {
  std::string name;       // "--output"
  std::string shortName;  // "-o", or ""
  // A flag, or what takes the option's value.
  std::variant<bool*, std::function<void(std::string const&)>> effect;
};

// Reads `words`, in which `--name value` and `--name=value` mean the same and "--" ends the
// options. Returns the words that are no options. The flags --help and --version end the reading.
// Raises a UsageError, with the option that may have been meant; `command` is "tvrng stream" and
// the like.
std::vector<std::string> readOptions(std::string_view command, std::span<std::string const> words,
                                     std::span<Option const> options);

// A number as people write it, 1e9 included, from `low` to `high`; a UsageError that names the
// option otherwise.
std::uint64_t wholeNumber(std::string_view option, std::string const& text, std::uint64_t low,
                          std::uint64_t high);

}  // namespace shell

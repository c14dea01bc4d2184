#include "shell/options.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>

#include "embedded_host/dispatcher.h"

namespace shell {

namespace {

[[noreturn]] void refuse(std::string_view command, std::string const& name,
                         std::span<Option const> options) {
  std::vector<std::string> known;
  for (Option const& option : options) known.push_back(option.name);
  std::string const closest = embedded_host::closestName(name, known);
  throw UsageError(fmt::format("{} has no option {}{}", command, name,
                               closest.empty() ? "" : "; did you mean " + closest + "?"));
}

}  // namespace

std::vector<std::string> readOptions(std::string_view command, std::span<std::string const> words,
                                     std::span<Option const> options) {
  std::vector<std::string> others;
  bool onlyOthers = false;
  for (std::size_t i = 0; i < words.size(); ++i) {
    std::string const& word = words[i];
    if (onlyOthers || word.size() < 2 || word[0] != '-') {
      others.push_back(word);
      continue;
    }
    if (word == "--") {
      onlyOthers = true;
      continue;
    }
    std::size_t const equals = word.starts_with("--") ? word.find('=') : std::string::npos;
    std::string const name = word.substr(0, equals);
    auto const option = std::ranges::find_if(
        options, [&](Option const& o) { return name == o.name || name == o.shortName; });
    if (option == options.end()) refuse(command, name, options);
    if (bool* const* flag = std::get_if<bool*>(&option->effect)) {
      if (equals != std::string::npos) throw UsageError(fmt::format("{} takes no value", name));
      **flag = true;
      if (option->name == "--help" || option->name == "--version") break;
      continue;
    }
    if (equals == std::string::npos && i + 1 == words.size()) {
      throw UsageError(fmt::format("{} needs a value", name));
    }
    std::get<1>(option->effect)(equals == std::string::npos ? words[++i] : word.substr(equals + 1));
  }
  return others;
}

std::uint64_t wholeNumber(std::string_view option, std::string const& text, std::uint64_t low,
                          std::uint64_t high) {
  // Digits are read exactly; 1e9 is read as a double.
  bool const digits = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
  std::optional<std::uint64_t> value;
  try {
    std::size_t used = 0;
    if (digits) {
      value = std::stoull(text);
    } else {
      double const number = std::stod(text, &used);
      if (used == text.size() && number >= 0 && number < 0x1p63 && number == std::floor(number)) {
        value = static_cast<std::uint64_t>(number);
      }
    }
  } catch (std::exception const&) {
    value.reset();
  }
  if (!value || *value < low || *value > high) {
    throw UsageError(
        fmt::format("{} takes a whole number from {} to {}, not {}", option, low, high, text));
  }
  return *value;
}

}  // namespace shell

#include "golden/table.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>

namespace golden {

namespace {

constexpr std::string_view kText =
#include <golden_table.inc>  // made from golden_table.txt
    ;

struct Table {
  int version = 0;
  std::map<std::pair<std::string_view, std::string_view>, std::uint64_t> rows;
};

std::string_view takeWord(std::string_view& line) {
  std::string_view const word = line.substr(0, line.find(' '));
  line.remove_prefix(std::min(line.size(), word.size() + 1));
  return word;
}

template <class T>
T toNumber(std::string_view text, int base) {
  T value{};
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (error != std::errc() || end != text.data() + text.size())
    throw std::logic_error("golden table: " + std::string(text));
  return value;
}

Table const& table() {
  static Table const table = [] {
    Table result;
    for (std::string_view rest = kText; !rest.empty();) {
      std::string_view line = rest.substr(0, rest.find('\n'));
      rest.remove_prefix(line.size() + 1);
      if (line.empty() || line.starts_with('#')) continue;
      std::string_view const generator = takeWord(line);
      std::string_view const name = takeWord(line);
      if (generator == "sequence-version")
        result.version = toNumber<int>(name, 10);
      else
        result.rows[{generator, name}] = toNumber<std::uint64_t>(line, 16);
    }
    return result;
  }();
  return table;
}

}  // namespace

int sequenceVersion() { return table().version; }

std::size_t rowCount() { return table().rows.size(); }

std::optional<std::uint64_t> goldenHash(std::string_view generator, std::string_view name) {
  auto const row = table().rows.find({generator, name});
  return row == table().rows.end() ? std::nullopt : std::optional(row->second);
}

}  // namespace golden

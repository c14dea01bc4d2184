#pragma once

// Reads the known-answer files of tests/kat: plain text, "#" starts a comment line, "@" a block.

#include <cstdint>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace known_answers {

struct Block {
  std::string title;                           // the text after "@ ", "" before the first block
  std::vector<std::vector<std::string>> rows;  // the fields of each line

  // All fields of all rows, in order, as numbers of base 10 or 16.
  std::vector<std::uint64_t> words(int base) const {
    std::vector<std::uint64_t> result;
    for (auto const& row : rows)
      for (auto const& field : row) result.push_back(std::stoull(field, nullptr, base));
    return result;
  }
  std::vector<double> doubles() const {
    std::vector<double> result;
    for (auto const& row : rows)
      for (auto const& field : row) result.push_back(std::stod(field));
    return result;
  }
};

inline std::vector<Block> read(std::string const& name) {
  std::ifstream file(std::string(TV_TEST_DATA) + "/kat/" + name);
  if (!file) throw std::runtime_error("no known-answer file " + name);
  std::vector<Block> blocks(1);
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    if (line[0] == '@') {
      blocks.push_back({line.substr(2), {}});
      continue;
    }
    std::istringstream fields(line);
    std::vector<std::string> row;
    for (std::string field; fields >> field;) row.push_back(field);
    blocks.back().rows.push_back(row);
  }
  return blocks;
}

// The block whose title starts with `title`.
inline Block block(std::string const& file, std::string const& title) {
  for (auto& candidate : read(file))
    if (candidate.title.starts_with(title)) return candidate;
  throw std::runtime_error("no block '" + title + "' in " + file);
}

}  // namespace known_answers

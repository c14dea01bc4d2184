#pragma once

// Reads known answers and other tables of the tests: plain text, "#" starts a comment line, "@" a
// block.

#include <cstdint>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/data_folder.h"

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

// The blocks of a file of that path below tests/.
inline std::vector<Block> readFile(std::string const& path) {
  std::ifstream file(dataFolder() + "/" + path);
  if (!file) throw std::runtime_error("no data file " + path);
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

inline std::vector<Block> read(std::string const& name) { return readFile("kat/" + name); }

// The rows of a file without blocks.
inline std::vector<std::vector<std::string>> rows(std::string const& path) {
  return readFile(path).front().rows;
}

// The block whose title starts with `title`.
inline Block block(std::string const& file, std::string const& title) {
  for (auto& candidate : read(file))
    if (candidate.title.starts_with(title)) return candidate;
  throw std::runtime_error("no block '" + title + "' in " + file);
}

}  // namespace known_answers

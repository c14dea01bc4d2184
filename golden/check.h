#pragma once

// Draws everything that the golden table has a row of, with every instruction set that the machine
// has and the kernels are built for, on several numbers of threads.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace golden {

struct Setting {
  std::int64_t target;  // of Highway
  int threads;

  std::string targetName() const;
};

// Best instruction set first; each with 1, 2, 5 and 16 threads.
std::vector<Setting> settings();

struct Difference {
  Setting setting;
  std::string generator;
  std::string name;
  std::uint64_t drawn;
  std::optional<std::uint64_t> golden;  // nothing for a row that the table does not have
};

struct Result {
  std::size_t rows = 0;          // compared
  std::uint64_t hash = 0;        // of all that was drawn
  std::uint64_t goldenHash = 0;  // what that should be
  std::vector<Difference> differences = {};
};

// Compares a generator's rows in one setting, which holds for this process while it runs.
Result check(Setting const& setting, std::string const& generator);

}  // namespace golden

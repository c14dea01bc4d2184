#pragma once

// What the golden table has a row of: each generator's draws in every distribution and mode, and
// the functions and tables below them.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

namespace golden {

// FNV-1a, 64 bits (G. Fowler, L. C. Noll, K.-P. Vo), of elements taken as little-endian words.
class Hash {
 public:
  void add(void const* elements, std::size_t count, std::size_t elementBytes);
  std::uint64_t value() const { return value_; }

 private:
  std::uint64_t value_ = 0xCBF2'9CE4'8422'2325;
};

// The generators, the one behind the two-part syntax ("legacy"), "library" for what is below them,
// and "language" for what the host language computes, in the order of the table.
std::span<char const* const> generators();

// Computes every row of a generator on the calling thread's settings (vector target, threads).
// Needs no file; takes no notice of the user's settings.
using TakeRow = std::function<void(std::string_view name, std::uint64_t hash)>;
void computeRows(std::string_view generator, TakeRow const& take);

}  // namespace golden

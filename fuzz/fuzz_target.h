#pragma once

// What a fuzzing program is made of: the entry point that it defines, bytes read as numbers, and
// the promises that it checks on the way.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string_view>
#include <type_traits>

// Runs one input. Called by libFuzzer or by replay.cpp; broken promises and sanitizer findings end
// the program.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace fuzz {

// Takes an input apart from its front; behind its end there are zeros.
class ByteReader {
 public:
  ByteReader(std::uint8_t const* data, std::size_t size) : rest_(data, size) {}

  template <class T>
  requires std::is_arithmetic_v<T> T take() {
    T value{};
    auto const bytes = takeBytes(sizeof(T));
    if (!bytes.empty()) std::memcpy(&value, bytes.data(), bytes.size());
    return value;
  }
  // A number of [0, n).
  std::size_t below(std::size_t n) { return take<std::uint8_t>() % n; }
  template <class T, std::size_t n>
  T const& oneOf(T const (&choices)[n]) {
    return choices[below(n)];
  }
  // As many as are left, at most n.
  std::span<std::uint8_t const> takeBytes(std::size_t n) {
    auto const bytes = rest_.first(std::min(n, rest_.size()));
    rest_ = rest_.subspan(bytes.size());
    return bytes;
  }
  std::string_view takeText(std::size_t n) {
    auto const bytes = takeBytes(n);
    return {reinterpret_cast<char const*>(bytes.data()), bytes.size()};
  }
  bool empty() const noexcept { return rest_.empty(); }

 private:
  std::span<std::uint8_t const> rest_;
};

// Ends the program with a message unless the promise is kept.
inline void check(bool kept, char const* promise) {
  if (kept) return;
  std::fprintf(stderr, "broken: %s\n", promise);
  std::abort();
}

}  // namespace fuzz

#pragma once

// What the code takes from the standard library and the one of emscripten 3.1.6 lacks. Read before
// every source of a WebAssembly build (cmake/wasm.cmake), and of no other.

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <system_error>
#include <type_traits>
#include <utility>

#if defined(_LIBCPP_VERSION) && _LIBCPP_VERSION < 14000

namespace std {

template <class To, class From>
constexpr To bit_cast(From const& from) noexcept {
  return __builtin_bit_cast(To, from);
}

template <class T>
requires is_unbounded_array_v<T> unique_ptr<T> make_unique_for_overwrite(size_t n) {
  return unique_ptr<T>(new remove_extent_t<T>[n]);
}
template <class T>
requires(!is_array_v<T>) unique_ptr<T> make_unique_for_overwrite() { return unique_ptr<T>(new T); }

// Of doubles: the C library rounds correctly as well. Takes what the language calls a number.
inline from_chars_result from_chars(char const* first, char const* last, double& value) {
  string const text(first, last);
  char* end = nullptr;
  double const read = strtod(text.c_str(), &end);
  if (end == text.c_str()) return {first, errc::invalid_argument};
  value = read;
  return {first + (end - text.c_str()),
          read == HUGE_VAL || read == -HUGE_VAL ? errc::result_out_of_range : errc{}};
}

namespace ranges {

template <class R, class P, class Projection = identity>
constexpr auto find_if(R&& range, P predicate, Projection projection = {}) {
  return std::find_if(std::begin(range), std::end(range),
                      [&](auto&& x) { return invoke(predicate, invoke(projection, x)); });
}
template <class R, class P, class Projection = identity>
constexpr auto find_if_not(R&& range, P predicate, Projection projection = {}) {
  return ranges::find_if(range, not_fn(predicate), projection);
}
template <class R, class T, class Projection = identity>
constexpr auto find(R&& range, T const& value, Projection projection = {}) {
  return ranges::find_if(
      range, [&](auto const& x) { return x == value; }, projection);
}
template <class R, class P, class Projection = identity>
constexpr bool any_of(R&& range, P predicate, Projection projection = {}) {
  return ranges::find_if(range, predicate, projection) != std::end(range);
}
template <class R, class P, class Projection = identity>
constexpr bool all_of(R&& range, P predicate, Projection projection = {}) {
  return !ranges::any_of(range, not_fn(predicate), projection);
}
template <class R, class P>
constexpr auto count_if(R&& range, P predicate) {
  return std::count_if(std::begin(range), std::end(range), predicate);
}
template <class R, class T>
constexpr auto count(R&& range, T const& value) {
  return std::count(std::begin(range), std::end(range), value);
}
template <class R, class P = std::equal_to<>, class Projection = identity>
constexpr auto adjacent_find(R&& range, P predicate = {}, Projection projection = {}) {
  return std::adjacent_find(std::begin(range), std::end(range), [&](auto const& a, auto const& b) {
    return invoke(predicate, invoke(projection, a), invoke(projection, b));
  });
}
template <class A, class B, class P = std::equal_to<>, class Left = identity,
          class Right = identity>
constexpr bool equal(A&& a, B&& b, P predicate = {}, Left left = {}, Right right = {}) {
  return std::equal(std::begin(a), std::end(a), std::begin(b), std::end(b),
                    [&](auto const& x, auto const& y) {
                      return invoke(predicate, invoke(left, x), invoke(right, y));
                    });
}
template <class R>
constexpr auto max_element(R&& range) {
  return std::max_element(std::begin(range), std::end(range));
}
template <class R>
constexpr auto min_element(R&& range) {
  return std::min_element(std::begin(range), std::end(range));
}
template <class R>
constexpr auto max(R&& range) {
  return *ranges::max_element(range);
}
template <class Out>
struct OutOnly {
  Out out;
};
template <class R, class Out>
constexpr OutOnly<Out> copy(R&& range, Out out) {
  return {std::copy(std::begin(range), std::end(range), out)};
}
template <class R, class Out>
constexpr void move(R&& range, Out out) {
  std::move(std::begin(range), std::end(range), out);
}
template <class R, class Out, class F>
constexpr void transform(R&& range, Out out, F function) {
  for (auto&& x : range) *out++ = invoke(function, x);
}
template <class R, class T>
constexpr void replace(R&& range, T const& from, T const& to) {
  std::replace(std::begin(range), std::end(range), from, to);
}
template <class R, class Out>
constexpr void rotate_copy(R&& range, decltype(std::begin(range)) middle, Out out) {
  std::rotate_copy(std::begin(range), middle, std::end(range), out);
}
template <class R, class Less = std::less<>, class Projection = identity>
constexpr void sort(R&& range, Less before = {}, Projection projection = {}) {
  std::sort(std::begin(range), std::end(range), [&](auto const& a, auto const& b) {
    return invoke(before, invoke(projection, a), invoke(projection, b));
  });
}

}  // namespace ranges
}  // namespace std

#endif

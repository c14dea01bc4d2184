#pragma once

// What an array of this host is.

#include <memory>
#include <string_view>
#include <utility>

#include "host/allocator.h"
#include "host/except.h"
#include "tests/second_host/second_host.h"

namespace second_host {

struct Value {
  txClassID classID;
  std::vector<std::uint64_t> dims;
  bool complex = false;
  txBuffer<std::byte> elements;   // numbers, logical values, text
  std::vector<txArrayPtr> cells;  // of a cell array
  std::string className;          // of an object
  Properties properties;

  std::uint64_t numel() const noexcept;
  std::size_t bytes() const noexcept;
};

// One owner of a value. Arrays share values; writing to a shared one copies it first.
struct Array final : txArray {
  explicit Array(std::shared_ptr<Value> shared) : value(std::move(shared)) {}
  std::shared_ptr<Value> value;
};

inline Value& valueOf(txArray const& array) { return *static_cast<Array const&>(array).value; }

// 0 for a class whose elements are no plain numbers.
std::size_t elementBytes(txClassID classID) noexcept;
// The built-in class of a number, nothing else: "double", "cell", ...
char const* builtinName(txClassID classID) noexcept;

[[noreturn]] void raise(std::string_view identifier,
                        std::vector<foundation::core::except::Argument> arguments = {});

}  // namespace second_host

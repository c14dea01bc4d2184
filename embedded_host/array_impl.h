#pragma once

// The one concrete array type behind txArray. Only the host's own sources see it.

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <variant>

#include "embedded_host/array.h"
#include "embedded_host/host_allocator.h"
#include "embedded_host/object_system.h"
#include "embedded_host/shared_value.h"
#include "host/tx_array.h"

namespace embedded_host {

// Dimensions: at least two, trailing ones of 1 dropped.
class Dimensions {
 public:
  explicit Dimensions(Dims dims);

  Dims view() const noexcept { return many_.empty() ? Dims(few_.data(), size_) : Dims(many_); }

 private:
  static constexpr std::size_t kFew = 3;

  std::size_t size_;
  std::array<std::uint64_t, kFew> few_;
  HostVector<std::uint64_t> many_;  // instead of few_ when there are more
};

// The elements of a full array. A scalar's are inside; all others are a block that copies share
// until one of them is written to.
class Elements {
 public:
  explicit Elements(std::size_t bytes);  // uninitialised
  Elements(Elements const& other) noexcept;
  Elements(Elements&& other) noexcept;
  Elements& operator=(Elements other) noexcept;
  ~Elements();

  void const* data() const noexcept;
  void* writable();                // copies a shared block first
  void extend(std::size_t bytes);  // the new bytes are 0
  std::size_t bytes() const noexcept { return bytes_; }

 private:
  // Keeps the elements behind it aligned for any vector type.
  struct alignas(64) Block {
    explicit Block(std::size_t bytes) : room(bytes) {}

    std::atomic<std::size_t> owners{1};
    std::size_t room;
  };
  Elements(std::size_t bytes, std::size_t room);
  static Elements withRoom(std::size_t bytes, std::size_t room);
  static constexpr std::size_t kInside = 16;

  bool isInside() const noexcept { return bytes_ <= kInside; }

  std::size_t bytes_;
  union {
    alignas(16) std::byte inside_[kInside];
    Block* block_;
  };
};

struct Cells {
  explicit Cells(std::size_t count) : items(count) {}
  Cells(Cells const& other);  // shares each element

  HostVector<txArrayPtr> items;  // null was never set
};
using Strings = HostVector<std::optional<HostText>>;

struct SparseElements {
  HostVector<std::uint64_t> columnStarts;
  HostVector<std::uint64_t> rowIndices;
  HostVector<double> values;
};

// An instance of a class.
struct Object {
  Object(ClassPtr definitionToUse, txArrayPtr underlyingArray);
  Object(Object const& other);
  Object& operator=(Object const&) = delete;

  // Runs the destroyer of a handle.
  void farewell(Shared<Object> last) const noexcept;

  ClassPtr definition;
  HostVector<txArrayPtr> stored;  // one for each property; null is an empty double matrix
  txArrayPtr underlying;
};

class Array final : public txArray {
 public:
  using Value = std::variant<Elements, Shared<Cells>, Shared<Strings>, Shared<SparseElements>,
                             Shared<Object>, HostText>;

  template <class Held>
  Array(txClassID classID, Dims arrayDims, Held held, txComplexity complexity = txComplexity::real)
      : id(classID),
        complex(complexity == txComplexity::complex),
        count(1),
        dimensions(arrayDims),
        value(std::move(held)) {
    for (std::uint64_t d : dimensions.view()) count *= d;
  }

  static void* operator new(std::size_t bytes) { return txMallocEx(bytes); }
  static void operator delete(void* memory) noexcept { txFreeEx(memory); }

  template <class T>
  T* holds() noexcept {
    return std::get_if<T>(&value);
  }
  template <class T>
  T const* holds() const noexcept {
    return std::get_if<T>(&value);
  }
  template <class T>
  Shared<T> const* shares() const noexcept {
    return std::get_if<Shared<T>>(&value);
  }
  template <class T>
  Shared<T>* shares() noexcept {
    return std::get_if<Shared<T>>(&value);
  }

  txClassID id;
  bool complex;
  std::uint64_t count;
  Dimensions dimensions;
  Value value;
};

inline Array& impl(txArray& array) noexcept { return static_cast<Array&>(array); }
inline Array const& impl(txArray const& array) noexcept { return static_cast<Array const&>(array); }

template <class... Args>
txArrayPtr makeImpl(Args&&... args) {
  return txArrayPtr(new Array(std::forward<Args>(args)...));
}

}  // namespace embedded_host

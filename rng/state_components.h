#pragma once

// The components of a stream's state: their classes and lengths, and temporary storage for them,
// each aligned for its elements.

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "host/allocator.h"
#include "rng/randstream.h"

// The element classes that a state may have.
struct StateClass {
  txClassID classID;
  std::string_view name;
  std::size_t bytes;
};
inline constexpr StateClass kStateClasses[] = {
    {txClassDouble, "double", 8}, {txClassSingle, "single", 4}, {txClassInt8, "int8", 1},
    {txClassUint8, "uint8", 1},   {txClassInt16, "int16", 2},   {txClassUint16, "uint16", 2},
    {txClassInt32, "int32", 4},   {txClassUint32, "uint32", 4}, {txClassInt64, "int64", 8},
    {txClassUint64, "uint64", 8},
};

// The table of a state's components. A class that no state can have counts as one without elements.
class StateComponents {
 public:
  // Classes and lengths; the elements are undefined until they are fetched or written.
  explicit StateComponents(randstream const& stream)
      : count_(static_cast<std::size_t>(stream.getNumStateComponents())),
        classes_(txMakeBuffer<txClassID>(count_)),
        lengths_(txMakeBuffer<std::uint64_t>(count_)) {
    // No components are no error, and are asked for nothing.
    if (count_ != 0) stream.getStateComponentTypes(count_, classes_.get(), lengths_.get());
  }

  std::size_t count() const { return count_; }
  StateClass const& elementClass(std::size_t i) const {
    static constexpr StateClass kNone = {txClassUnknown, "", 1};
    auto const* const row = std::ranges::find(kStateClasses, classes_[i], &StateClass::classID);
    return row == std::end(kStateClasses) ? kNone : *row;
  }
  std::size_t length(std::size_t i) const {
    return elementClass(i).classID == txClassUnknown ? 0 : static_cast<std::size_t>(lengths_[i]);
  }
  std::size_t bytes(std::size_t i) const { return elementClass(i).bytes * length(i); }
  std::size_t flatSize() const {
    std::size_t size = 0;
    for (std::size_t i = 0; i < count_; ++i) size += bytes(i);
    return size;
  }

  // Makes the storage and returns the address of each component.
  void* const* allocate() {
    storage_ = txMakeBuffer<std::byte>(flatSize() + count_ * kAlignment);
    pieces_ = txMakeBuffer<void*>(count_);
    std::size_t at = 0;
    for (std::size_t i = 0; i < count_; ++i) {
      pieces_[i] = storage_.get() + at;
      at += (bytes(i) + kAlignment - 1) / kAlignment * kAlignment;
    }
    return pieces_.get();
  }
  // The same with the elements of the stream's state.
  void* const* fetch(randstream const& stream) {
    stream.getStateComponents(count_, allocate());
    return pieces_.get();
  }

  // The flat form of the state: the components' bytes back to back.
  void copyTo(void* flat) const {
    auto* to = static_cast<std::byte*>(flat);
    for (std::size_t i = 0; i < count_; ++i)
      to = std::copy_n(static_cast<std::byte const*>(pieces_[i]), bytes(i), to);
  }
  void copyFrom(void const* flat) {
    auto const* from = static_cast<std::byte const*>(flat);
    for (std::size_t i = 0; i < count_; from += bytes(i++))
      std::copy_n(from, bytes(i), static_cast<std::byte*>(pieces_[i]));
  }

 private:
  static constexpr std::size_t kAlignment = 8;

  std::size_t count_;
  txBuffer<txClassID> classes_;
  txBuffer<std::uint64_t> lengths_;
  txBuffer<std::byte> storage_;
  txBuffer<void*> pieces_;
};

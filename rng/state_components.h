#pragma once

// Temporary storage for the components of a stream's state, each aligned for its elements.

#include <algorithm>
#include <cstddef>
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

class StateComponents {
 public:
  // The classes and lengths of the stream's components; their elements are undefined.
  explicit StateComponents(randstream const& stream)
      : count_(stream.getNumStateComponents()), components_(txMakeBuffer<Component>(count_)) {
    const auto classes = txMakeBuffer<txClassID>(count_);
    const auto lengths = txMakeBuffer<unsigned long>(count_);
    // No components are no error, and are asked for nothing.
    if (count_ != 0) stream.getStateComponentTypes(count_, classes.get(), lengths.get());
    for (std::size_t i = 0; i < count_; ++i) {
      StateClass const* const row = classOf(classes[i]);
      components_[i] = {row, row->classID == txClassUnknown ? 0 : lengths[i]};
      flatSize_ += bytesOf(i);
    }
  }

  unsigned long count() const { return count_; }
  StateClass const& elementClass(std::size_t i) const { return *components_[i].elementClass; }
  unsigned long length(std::size_t i) const { return components_[i].length; }
  std::size_t flatSize() const { return flatSize_; }

  // Makes the storage and returns the address of each component.
  void* const* allocate() {
    storage_ = txMakeBuffer<std::byte>(flatSize_ + count_ * kAlignment);
    pieces_ = txMakeBuffer<void*>(count_);
    std::size_t at = 0;
    for (std::size_t i = 0; i < count_; ++i) {
      pieces_[i] = storage_.get() + at;
      at += (bytesOf(i) + kAlignment - 1) / kAlignment * kAlignment;
    }
    return pieces_.get();
  }

  // The flat form of the state: the components' bytes back to back.
  void copyTo(void* flat) const {
    auto* to = static_cast<std::byte*>(flat);
    for (std::size_t i = 0; i < count_; ++i)
      to = std::copy_n(static_cast<std::byte const*>(pieces_[i]), bytesOf(i), to);
  }
  void copyFrom(void const* flat) {
    auto const* from = static_cast<std::byte const*>(flat);
    for (std::size_t i = 0; i < count_; from += bytesOf(i++))
      std::copy_n(from, bytesOf(i), static_cast<std::byte*>(pieces_[i]));
  }

 private:
  static constexpr std::size_t kAlignment = 8;

  struct Component {
    StateClass const* elementClass;
    unsigned long length;
  };

  // A class that no state can have counts as one without elements.
  static StateClass const* classOf(txClassID classID) {
    static constexpr StateClass kNone = {txClassUnknown, "", 1};
    for (StateClass const& row : kStateClasses)
      if (row.classID == classID) return &row;
    return &kNone;
  }
  std::size_t bytesOf(std::size_t i) const {
    return components_[i].length * components_[i].elementClass->bytes;
  }

  unsigned long count_;
  txBuffer<Component> components_;
  std::size_t flatSize_ = 0;
  txBuffer<std::byte> storage_;
  txBuffer<void*> pieces_;
};

// Elements of full arrays: inside the array or in a shared block.

#include <algorithm>
#include <cstring>
#include <new>

#include "embedded_host/array_impl.h"
#include "embedded_host/interrupt.h"

namespace embedded_host {

Elements::Elements(std::size_t bytes) : Elements(bytes, bytes) {}

Elements::Elements(std::size_t bytes, std::size_t room) : bytes_(bytes) {
  if (!isInside()) block_ = new (txMallocEx(sizeof(Block) + room)) Block(room);
}

Elements::Elements(Elements const& other) noexcept : bytes_(other.bytes_) {
  if (isInside()) {
    std::memcpy(inside_, other.inside_, kInside);
  } else {
    block_ = other.block_;
    block_->owners.fetch_add(1, std::memory_order_relaxed);
  }
}

Elements::Elements(Elements&& other) noexcept : bytes_(other.bytes_) {
  if (isInside()) {
    std::memcpy(inside_, other.inside_, kInside);
  } else {
    block_ = other.block_;
    other.bytes_ = 0;
  }
}

Elements& Elements::operator=(Elements other) noexcept {
  this->~Elements();
  return *new (this) Elements(std::move(other));
}

Elements::~Elements() {
  if (isInside()) return;
  if (block_->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) txFreeEx(block_);
}

void const* Elements::data() const noexcept {
  return isInside() ? static_cast<void const*>(inside_) : block_ + 1;
}

void* Elements::writable() {
  if (isInside()) return inside_;
  if (block_->owners.load(std::memory_order_acquire) != 1) {
    Elements own(bytes_);
    auto* const to = static_cast<std::byte*>(own.writable());
    auto const* const from = static_cast<std::byte const*>(data());
    inParts(bytes_, [=](std::size_t begin, std::size_t end) {
      std::memcpy(to + begin, from + begin, end - begin);
    });
    *this = std::move(own);
  }
  return block_ + 1;
}

// Where there is no memory for the room, without it.
Elements Elements::withRoom(std::size_t bytes, std::size_t room) {
  if (room <= bytes) return Elements(bytes);
  try {
    return Elements(bytes, room);
  } catch (...) {
    return Elements(bytes);
  }
}

void Elements::extend(std::size_t bytes) {
  std::size_t const old = bytes_;
  bool const isAlone = isInside() || block_->owners.load(std::memory_order_acquire) == 1;
  if (isAlone && bytes <= (isInside() ? kInside : block_->room)) {
    bytes_ = bytes;
  } else {
    Elements larger = withRoom(bytes, old + old / 2);
    std::memcpy(larger.writable(), data(), old);
    *this = std::move(larger);
  }
  std::memset(static_cast<std::byte*>(writable()) + old, 0, bytes - old);
}

}  // namespace embedded_host

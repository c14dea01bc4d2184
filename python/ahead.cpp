#include "python/ahead.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace tvpython {
namespace {

// Two doubles, two words of 64 bits, four of 32 bits side by side, in every instruction set.
using Doubles = double __attribute__((vector_size(16)));
using Words = std::int64_t __attribute__((vector_size(16)));
using HalfWords = std::int32_t __attribute__((vector_size(16)));
static_assert(std::endian::native == std::endian::little, "the low halves come first");

// floor(u * 2^32) in the low halves: a sum has the nearest whole number in its last bits, which is
// at most one above.
Words leadingBits(double const* u) noexcept {
  Doubles uniforms;
  std::memcpy(&uniforms, u, sizeof uniforms);
  Doubles const scaled = uniforms * 0x1p32;
  Doubles const sum = scaled + 0x1p52;
  return reinterpret_cast<Words>(sum) + (scaled < sum - 0x1p52);  // true is -1
}

// n, a multiple of four, of the 32 leading bits of uniforms.
void takeLeadingBits(double const* u, std::uint32_t* words, std::size_t n) noexcept {
  for (std::size_t i = 0; i < n; i += 4) {
    auto const low = reinterpret_cast<HalfWords>(leadingBits(u + i));
    auto const high = reinterpret_cast<HalfWords>(leadingBits(u + i + 2));
    HalfWords const four = __builtin_shufflevector(low, high, 0, 2, 4, 6);
    std::memcpy(words + i, &four, sizeof four);
  }
}

}  // namespace

// A state is one array of at most 64-bit elements.
Ahead::Ahead(randstream& stream)
    : stream_(stream), before_(std::make_unique_for_overwrite<std::uint64_t[]>([&] {
        txClassID classID;
        unsigned long length;
        stream.getStateComponentTypes(1, &classID, &length);
        return length;
      }())) {}

void Ahead::refill() noexcept {
  void* const state = before_.get();
  stream_.getStateComponents(1, &state);
  stream_.randuFcn(uniforms_.data(), length_);
  takeLeadingBits(uniforms_.data(), words_.data(), length_);
  at_ = 0;
  end_ = length_;
  length_ = std::min(2 * length_, kMost);
}

void Ahead::giveBack() noexcept {
  if (at_ < end_) {
    void const* const state = before_.get();
    stream_.setStateComponents(1, &state);
    stream_.randuFcn(uniforms_.data(), at_);
  }
  at_ = end_ = 0;
  length_ = kFirst;
}

}  // namespace tvpython

#pragma once

// Streams as a source of random bits, and of seeds, for the standard library.

#include <tvmathrng/cxx20.h>

#include <cstddef>
#include <cstdint>
#include <limits>

#include <tvmathrng/stream.h>

namespace tvmathrng {

/// A uniform random bit generator, as std::shuffle and the distributions of `<random>` take it,
/// that draws from a stream: each call one uniform, whose 32 leading bits it returns. What the
/// standard library makes of the bits is its own affair and differs from one to another; the
/// stream's own functions give the same values everywhere.
class Bits {
 public:
  using result_type = std::uint32_t;

  /// Borrows the stream, which may be drawn from at the same time.
  explicit Bits(Stream& stream) noexcept : stream_(&stream) {}

  static constexpr result_type min() noexcept { return 0; }
  static constexpr result_type max() noexcept { return std::numeric_limits<result_type>::max(); }
  result_type operator()() { return static_cast<result_type>(stream_->uniform() * 0x1p32); }

 private:
  Stream* stream_;
};

/// A seed sequence, as the engines of `<random>` take it, of integers that are drawn from a stream,
/// one draw for each 32 bits: std::mt19937_64 engine(seeds). Two engines that are seeded one after
/// the other are seeded differently; a stream of the same seed seeds them the same again.
class SeedSequence {
 public:
  using result_type = std::uint_least32_t;

  /// Borrows the stream.
  explicit SeedSequence(Stream& stream) noexcept : stream_(&stream) {}
  SeedSequence(SeedSequence const&) = delete;
  SeedSequence& operator=(SeedSequence const&) = delete;

  template <class Iterator>
  void generate(Iterator first, Iterator last) {
    for (; first != last; ++first) *first = stream_->integer<std::uint32_t>({0, 0xFFFFFFFF});
  }
  /// The words that it was made from: none.
  std::size_t size() const noexcept { return 0; }
  template <class Iterator>
  void param(Iterator) const noexcept {}

 private:
  Stream* stream_;
};

/// A seed from any seed sequence of the standard library, for example a std::seed_seq of several
/// numbers: the first word that it generates.
template <class Sequence>
Seed seed_from(Sequence& sequence) {
  std::uint_least32_t words[1];
  sequence.generate(words, words + 1);
  return Seed{static_cast<std::uint32_t>(words[0])};
}

}  // namespace tvmathrng

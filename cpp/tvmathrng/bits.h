#pragma once

// Streams as a source of random bits for the standard library.

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

}  // namespace tvmathrng

#pragma once

// What a report looks at: a generator with a seed, and what is known of its structure.

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "rng/randstream.h"

namespace report {

// factors[0] u(n + lags[0]) + factors[1] u(n + lags[1]) + ... modulo 1: where a generator's triples
// lie on planes, all of them have the same value of this.
struct Planes {
  std::array<int, 3> factors;
  std::array<int, 3> lags;
  std::string origin;
};

// What is known of a generator and can be looked for in its numbers; in draws of full precision.
struct Traits {
  int freeBits = 0;  // leading bits of a draw that vary
  int log2Period = 0;
  int stepsADraw = 1;            // where lengths of streams count steps
  std::array<int, 3> lags = {};  // of its recurrence or block; 0 is none
  Planes planes = {};
  double zigguratSeam = 0;  // where the tail of its Ziggurat begins
};

struct Subject {
  std::string name;
  std::uint32_t seed = 0;
  Traits traits;
  bool hasSubstreams = false;
  // A new stream: of this generator, a seed, and an index from 0 (only 0 without substreams).
  std::function<std::shared_ptr<randstream>(std::uint32_t seed, std::uint64_t stream)> make;

  std::shared_ptr<randstream> stream() const { return make(seed, 0); }
};

// A generator of the library by any of its names, or "legacy": what the older two-part syntax draws
// from after rand('state',seed) and randn('state',seed). Errors: those of rng::createStream.
Subject subjectNamed(std::string_view name, std::uint32_t seed);

// Full or reduced precision; the legacy stream has one, which stays.
void choosePrecision(randstream& stream, bool full);

// Streams that stand side by side: stream 1 substream 1, stream 1 substream 2, stream 2 substream
// 1, ...; without substreams, those of seed, seed + 1, ...
inline constexpr std::uint64_t kNeighbours = 16;
std::shared_ptr<randstream> neighbour(Subject const& subject, std::uint64_t i);
std::string neighbourName(Subject const& subject, std::uint64_t i);

// The bin that a value of (0,1) falls into.
inline std::size_t binOf(double value, std::size_t bins) {
  auto const bin = static_cast<std::size_t>(value * static_cast<double>(bins));
  return bin < bins ? bin : bins - 1;
}

// Draws n uniforms of a stream in blocks: use(values, count).
template <class Use>
void eachBlock(randstream& stream, std::uint64_t n, Use use) {
  // Short enough that a generator with substreams fills it on the thread that asks.
  constexpr std::uint64_t kBlock = 1000;
  double block[kBlock];
  for (std::uint64_t done = 0; done < n;) {
    std::uint64_t const length = n - done < kBlock ? n - done : kBlock;
    stream.randuFcn(block, length);
    use(static_cast<double const*>(block), length);
    done += length;
  }
}

}  // namespace report

#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "host/tx_array.h"

namespace shell {

enum class Distribution { uniform, normal, integers };
enum class Format { text, csv, npy, raw };

// What `tvrng stream` was asked for.
struct StreamOptions {
  static constexpr std::uint64_t kEndless = std::numeric_limits<std::uint64_t>::max();

  std::string generator = "mt19937ar";
  std::uint32_t seed = 0;
  std::uint64_t streams = 1;
  std::uint64_t stream = 1;     // from 1
  std::uint64_t substream = 1;  // from 1
  Distribution distribution = Distribution::uniform;
  txClassID type = txClassDouble;
  std::string method;  // of normals; "" is the generator's own choice
  double low = 0;      // of integers
  double high = 0;
  std::uint64_t count = kEndless;
  Format format = Format::text;
  bool antithetic = false;
  bool reducedPrecision = false;
  bool help = false;
};

// Wrong words are a UsageError.
StreamOptions parseStreamOptions(std::vector<std::string> const& words);

extern char const kStreamUsage[];

}  // namespace shell

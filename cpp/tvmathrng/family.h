#pragma once

// The streams of numbered work items.

#include <string>
#include <string_view>
#include <utility>

#include <tvmathrng/stream.h>
#include <tvmathrng/values.h>

namespace tvmathrng {

/// The streams of work items by their numbers, two constants: item k has the same numbers whoever
/// works on it, on whichever thread, process or machine. Copies are alike, and any number of
/// threads may use one.
class Family {
 public:
  /// The items of a seed. Errors: create:UnknownRNGType, and set:SubstreamsNotSupported for a
  /// generator without substreams.
  explicit Family(Seed seed, std::string_view generator = "philox4x32_10")
      : Family(Stream(std::string(generator), seed).at_substream(Substream{1})) {}

  /// The stream of item k, a new one at its start.
  Stream operator[](Substream k) const {
    Stream item(generator_, seed_);
    item.set_substream(k);
    return item;
  }

  std::string_view generator() const noexcept { return generator_; }
  Seed seed() const noexcept { return seed_; }
  friend bool operator==(Family const&, Family const&) = default;

 private:
  explicit Family(Stream const& first) : generator_(first.generator()), seed_(first.seed()) {}

  std::string generator_;
  Seed seed_;
};

}  // namespace tvmathrng

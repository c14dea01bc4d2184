#pragma once

// At the head of every draw: when a long one is ended from outside (plugin_rng/interruption.h), the
// stream goes back to where it was. Streams of generators from elsewhere stay where they are.

#include <memory>

#include "plugin_rng/interruption.h"
#include "rng/randstream.h"

class TV_LOCAL randstream::WholeDraw {
 public:
  // Short draws, of at most plugin_rng::kUninterrupted values, are never ended.
  WholeDraw(randstream& stream, std::uint64_t n) {
    if (n > plugin_rng::kUninterrupted) [[unlikely]]
      begin(stream);
  }
  ~WholeDraw() {
    if (before_) [[unlikely]]
      end();
  }
  WholeDraw(WholeDraw const&) = delete;
  WholeDraw& operator=(WholeDraw const&) = delete;

 private:
  void begin(randstream& stream);
  void end() noexcept;

  std::unique_ptr<randstream> before_;
  randstream* stream_;  // these two are known to begin and end alone
  int exceptionsOutside_;
};

#pragma once

#include <chrono>
#include <cstdint>

namespace shell {

// A line on standard error that tells how far a long output is; nothing at all when standard error
// is no terminal.
class Progress {
 public:
  // `total` values, or StreamOptions::kEndless.
  explicit Progress(std::uint64_t total);
  ~Progress();
  Progress(Progress const&) = delete;
  Progress& operator=(Progress const&) = delete;

  void update(std::uint64_t done);

 private:
  using Clock = std::chrono::steady_clock;

  bool shown_;
  bool drawn_ = false;
  std::uint64_t total_;
  Clock::time_point start_ = Clock::now();
  Clock::time_point next_ = start_;
};

}  // namespace shell

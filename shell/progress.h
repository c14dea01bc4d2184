#pragma once

#include <chrono>
#include <string_view>

namespace shell {

// A line on standard error that tells how far long work is, with a bar and the time that is left;
// nothing at all when standard error is no terminal. What is quickly done shows none.
class Progress {
 public:
  // `wanted` false shows nothing either.
  explicit Progress(bool wanted = true);
  ~Progress();
  Progress(Progress const&) = delete;
  Progress& operator=(Progress const&) = delete;

  // True a few times a second: when a new line is worth drawing.
  bool isDue() const;
  // `share` from 0 to 1, or negative when the end is unknown, which leaves the text alone.
  void draw(double share, std::string_view text);
  double seconds() const;  // since the work began

 private:
  using Clock = std::chrono::steady_clock;

  bool shown_;
  bool drawn_ = false;
  Clock::time_point start_ = Clock::now();
  Clock::time_point next_ = start_;
};

}  // namespace shell

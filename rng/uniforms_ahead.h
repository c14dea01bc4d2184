#pragma once

// The uniforms that a method for normals reads one after the other. They are drawn before they are
// read: as the method plans it, and of a generator of this library as many at once as pay, never
// more than are surely consumed.

#include <algorithm>
#include <cstddef>

#include "rng/chunks.h"
#include "rng/uniform_source.h"

class UniformsAhead {
 public:
  UniformsAhead(UniformSource source, bool isOwn) : source_(source), isOwn_(isOwn) {}

  // How many are drawn and not read.
  std::size_t unread() const noexcept { return next_ < end_ ? end_ - next_ : 0; }
  double const* begin() const noexcept { return buffer_ + next_; }
  double read() noexcept { return buffer_[next_++]; }
  // Passes over `count`, of which some may be not drawn yet.
  void pass(std::size_t count) noexcept { next_ += count; }

  // `count` are unread afterwards. `planned`, at least `count` and at most twice kChunk, is what
  // the method plans to have unread from here; `sure` is what it consumes from here whatever they
  // are.
  void need(std::size_t count, std::size_t planned, std::size_t sure) {
    if (next_ + count <= end_) return;
    drawPassed();
    const std::size_t left = end_ - next_;
    std::copy(buffer_ + next_, buffer_ + end_, buffer_);
    next_ = 0;
    end_ = isOwn_ ? std::max(planned, std::min(sure, kLongChunk)) : planned;
    source_.randu(buffer_ + left, end_ - left);
  }
  // The same of a generator of this library, if it is one.
  void lookAhead(std::size_t count, std::size_t sure) {
    if (isOwn_) need(count, count, sure);
  }
  // Draws what was passed over and not drawn.
  void drawPassed() {
    if (next_ <= end_) return;
    source_.randu(buffer_, next_ - end_);
    next_ = end_ = 0;
  }

 private:
  UniformSource source_;
  bool isOwn_;
  std::size_t next_ = 0;  // buffer_[next_, end_) is unread
  std::size_t end_ = 0;
  double buffer_[kLongChunk];
};

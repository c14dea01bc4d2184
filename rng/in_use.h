#pragma once

// At the head of every operation of a stream: builds with assertions end the program, with a
// message, when a second thread comes in. In other builds nothing of this remains.

#include "rng/randstream.h"

class TV_LOCAL randstream::InUse {
 public:
#ifdef NDEBUG
  explicit InUse(randstream const& /*stream*/) noexcept {}
#else
  explicit InUse(randstream const& stream) noexcept : stay_(stream.user_) {
    if (!stay_.isAlone()) endProgram(stream);
  }

 private:
  [[noreturn]] static void endProgram(randstream const& stream) noexcept;

  OneUser::Stay stay_;
#endif
};

#pragma once

// At the head of every operation of a stream: builds with assertions end the program, with a
// message, when a thread comes in while another one changes the stream. In other builds nothing of
// this remains.

#include <optional>

#include "rng/randstream.h"

class TV_LOCAL randstream::InUse {
 public:
#ifdef NDEBUG
  explicit InUse(randstream const& /*stream*/) noexcept {}
#else
  explicit InUse(randstream& stream) noexcept {
    if (!stay_.emplace(stream.user_).isAlone()) endProgram(stream);
  }
  // Of operations that leave the stream as it is.
  explicit InUse(randstream const& stream) noexcept {
    if (!stream.user_.mayRead()) endProgram(stream);
  }

 private:
  [[noreturn]] static void endProgram(randstream const& stream) noexcept;

  std::optional<OneUser::Stay> stay_;
#endif
};

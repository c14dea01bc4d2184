#pragma once

// At the head of every operation of a stream.

#include <optional>

#include "rng/randstream.h"
#include "tfl_rng/float_environment.h"

// Builds with assertions end the program, with a message, when a thread comes in while another one
// changes the stream. In other builds nothing of this remains.
class TV_LOCAL randstream::OneThread {
 public:
#ifdef NDEBUG
  explicit OneThread(randstream const& /*stream*/) noexcept {}
#else
  explicit OneThread(randstream& stream) noexcept {
    if (!stay_.emplace(stream.user_).isAlone()) endProgram(stream);
  }
  // Of operations that leave the stream as it is.
  explicit OneThread(randstream const& stream) noexcept {
    if (!stream.user_.mayRead()) endProgram(stream);
  }

 private:
  [[noreturn]] static void endProgram(randstream const& stream) noexcept;

  std::optional<OneUser::Stay> stay_;
#endif
};

// The same, and the floating-point environment is the default one until the operation ends.
class TV_LOCAL randstream::InUse {
 public:
  explicit InUse(auto& stream) noexcept : oneThread_(stream) {}

 private:
  OneThread const oneThread_;
  tfl_rng::FloatEnvironment const environment_;
};

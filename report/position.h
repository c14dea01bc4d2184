#pragma once

// How far a stream has come: its draws since it was made, found by comparing it with a stream that
// starts anew, so that nothing needs to count while it draws.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "rng/randstream.h"

namespace report {

// Raw outputs in half draws, because a generator's own normals and reduced precision may take half
// of what a full-precision draw takes.
struct Position {
  std::uint64_t draws;
  bool andAHalf;
};

// Where `stream` stands behind `start`, a stream of the same generator at its beginning, when that
// is at most `limit` draws; nothing for a state that is not on the way, for example one that was
// restored from another stream. `stream` stays where it is; `start` is used up.
std::optional<Position> positionBehind(randstream& stream, std::shared_ptr<randstream> const& start,
                                       std::uint64_t limit);

}  // namespace report

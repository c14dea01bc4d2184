#pragma once

// Snapshots: a stream as text, complete, with a version and a checksum, that a stream on any
// machine can be made from. Unlike the state of the generator alone, a snapshot has the seed, the
// stream's place in its family, the modes, the method for normals and a pending Polar value.
// docs/snapshots.md describes the format.

#include <string>
#include <string_view>

#include "host/export.h"
#include "rng/randstream.h"

// The stream as text. Draws nothing.
TV_EXPORT std::string takeSnapshot(randstream const& stream);

// Makes `stream` the one that the snapshot was taken of: it draws, resets and moves as that one
// would have. A refused snapshot changes nothing. Errors: snapshot:NotASnapshot, OtherVersion,
// Truncated, Damaged, OtherGenerator, InvalidLine for a text whose checksum fits but whose contents
// make no sense, and those of the generator's factory and state.
TV_EXPORT void restoreSnapshot(randstream& stream, std::string_view text);

// A new stream, which the caller owns. Errors: the same without OtherGenerator.
TV_EXPORT randstream* createFromSnapshot(std::string_view text);

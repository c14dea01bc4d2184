#pragma once

// Each VM's legacy stream, which holds the generators of the two-part syntax of rand and randn. The
// VM is in legacy mode while this stream is its global stream: from the first form that sets one of
// the generators until something else replaces or clears the global stream. The legacy stream and
// its states survive that.

#include <cstddef>
#include <cstdint>
#include <memory>

#include "host/export.h"
#include "host/tx_array.h"
#include "rng/randstream.h"

// The generators, by the number of their state component.
enum class LegacyGenerator : std::size_t {
  uniformSeed = 1,
  uniformState,
  uniformTwister,
  normalSeed,
  normalState,
};

// Its keyword: "seed", "state" or "twister".
char const* legacyKeyword(LegacyGenerator generator) noexcept;

// Class and length of its state.
struct LegacyStateType {
  txClassID classID;
  std::uint64_t length;
};
LegacyStateType legacyStateType(LegacyGenerator generator) noexcept;

// The current VM's legacy stream, made on first use.
std::shared_ptr<randstream> acquireLegacyRandStream();

// Each of these sets one generator, makes it the one that draws its distribution, and enters legacy
// mode; entering issues the warning "TALVOR:RandStream:ActivatingLegacyGenerators". A failure
// changes nothing; that of making the global stream, where there is none yet, is one.

// Seeds the generator: the "seed" ones with the value itself, the others with its low 32 bits.
void seedLegacyGenerator(LegacyGenerator generator, double seed);
// Loads a whole state component. Errors: InvalidState of the generator.
void loadLegacyGenerator(LegacyGenerator generator, void const* state);

// Copies the generator's state component to `state`. Issues the warning
// "TALVOR:RandStream:ReadingInactiveLegacyGeneratorState" unless the generator draws the global
// stream's numbers.
void readLegacyGenerator(LegacyGenerator generator, void* state);

// Builtins.

// handle = getLegacyRandStream(): a new handle of the legacy stream. Errors: set:WrongNumberArgs.
TV_EXPORT void getLegacyRandStream(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);
// yes = inLegacyMode(). Makes the global and the legacy stream where there is none yet.
TV_EXPORT void inLegacyMode(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);

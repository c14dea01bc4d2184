#pragma once

// What the host's settings say about random numbers: group "talvor.general.randomnumbers", keys
// "DefaultAlgorithm" (a generator or an alias of one) and "DefaultSeed". Errors of the settings
// store propagate.

#include <cstdint>
#include <string>

struct DefaultStreamSettings {
  std::u16string algorithm;  // canonical generator name
  std::uint32_t seed;
};

// Generator and seed of a new global stream, from the values in effect; mt19937ar and 0 when the
// store has no such group. The seed is truncated and taken modulo 2^32: 5.9 is 5, -1 is 4294967295.
DefaultStreamSettings readDefaultStreamSettings();

// The canonical name of the generator that the host was shipped with.
std::u16string readFactoryDefaultAlgorithm();

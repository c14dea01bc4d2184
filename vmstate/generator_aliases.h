#pragma once

// The names that users of the host know generators by.

#include <string>
#include <string_view>

struct GeneratorAlias {
  std::u16string_view alias;
  std::u16string_view name;  // canonical
};

inline constexpr GeneratorAlias kGeneratorAliases[] = {
    {u"twister", u"mt19937ar"},      {u"simdTwister", u"dsfmt19937"},
    {u"combRecursive", u"mrg32k3a"}, {u"multFibonacci", u"mlfg6331_64"},
    {u"philox", u"philox4x32_10"},   {u"threefry", u"threefry4x64_20"},
};

// Replaces an alias (exact case) by the generator's name; leaves all other names alone.
inline void canonicalGeneratorName(std::u16string& name) {
  for (GeneratorAlias const& row : kGeneratorAliases) {
    if (name == row.alias) {
      name = row.name;
      return;
    }
  }
}

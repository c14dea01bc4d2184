#pragma once

// The known name that somebody probably meant.

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/ascii_case.h"

namespace names {

// The number of insertions, deletions, replacements and swaps of neighbours between two names.
inline std::size_t editDistance(std::string_view a, std::string_view b) {
  std::vector<std::vector<std::size_t>> cost(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) {
    for (std::size_t j = 0; j <= b.size(); ++j) {
      if (i == 0 || j == 0) {
        cost[i][j] = i + j;
        continue;
      }
      bool const same = ascii_case::lower(a[i - 1]) == ascii_case::lower(b[j - 1]);
      cost[i][j] =
          std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1, cost[i - 1][j - 1] + (same ? 0 : 1)});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
    }
  }
  return cost[a.size()][b.size()];
}

// The known name closest to `name` (at most two edits, and fewer than half of its letters), for
// "did you mean" texts; empty when none is close.
inline std::string closestName(std::string_view name, std::span<std::string const> known) {
  constexpr std::size_t kMostEdits = 2;
  if (name.empty()) return {};
  std::string_view best;
  std::size_t fewest = std::min(kMostEdits, (name.size() - 1) / 2) + 1;
  for (std::string const& candidate : known) {
    auto const [shorter, longer] = std::minmax({name.size(), candidate.size()});
    if (longer - shorter >= fewest) continue;
    std::size_t const edits = editDistance(name, candidate);
    if (edits >= fewest) continue;
    fewest = edits;
    best = candidate;
  }
  return std::string(best);
}

}  // namespace names

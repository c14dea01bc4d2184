#pragma once

// Integers of twice the bits of the widest class: sums, products and counts of those are exact.

namespace language {

__extension__ using int128 = __int128;
__extension__ using uint128 = unsigned __int128;

}  // namespace language

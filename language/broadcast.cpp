#include "language/broadcast.h"

#include <algorithm>

#include "language/fault.h"

namespace language {

Broadcast::Broadcast(txArray const& left, txArray const& right, char const* what) {
  Dims const a = left.dims();
  Dims const b = right.dims();
  std::size_t const rank = std::max(a.size(), b.size());
  std::uint64_t leftStep = 1;
  std::uint64_t rightStep = 1;
  for (std::size_t d = 0; d < rank; ++d) {
    std::uint64_t const m = d < a.size() ? a[d] : 1;
    std::uint64_t const n = d < b.size() ? b[d] : 1;
    if (m != n && m != 1 && n != 1) {
      bool const text = left.isText() || right.isText();
      raiseFault(
          "sizes",
          std::string("The sizes ") + sizeText(a) + " and " + sizeText(b) +
              " do not go together in " + what + ".",
          text ? "to compare whole texts use same(a,b)" : "extents are equal, or one of them is 1");
    }
    std::uint64_t const extent = m == 1 ? n : m;
    result_.push_back(extent);
    count_ *= extent;
    std::uint64_t const stepA = m == 1 ? 0 : leftStep;
    std::uint64_t const stepB = n == 1 ? 0 : rightStep;
    leftStep *= m;
    rightStep *= n;
    bool const joins = !extents_.empty() && stepA == leftSteps_.back() * extents_.back() &&
                       stepB == rightSteps_.back() * extents_.back();
    if (joins) {
      extents_.back() *= extent;
    } else if (extent != 1 || extents_.empty()) {
      extents_.push_back(extent);
      leftSteps_.push_back(stepA);
      rightSteps_.push_back(stepB);
    }
  }
}

}  // namespace language

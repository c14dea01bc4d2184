#include "tfl_rng/ziggurat128.h"

#include <cmath>

#include "tfl_rng/elementary.h"

namespace tfl_rng {
namespace {

double density(double x) { return pinnedExp(-0.5 * x * x); }

Ziggurat128 makeTables() {
  constexpr double scale = 0x1p31;
  Ziggurat128 t;
  double x = Ziggurat128::kTailStart;
  const double baseWidth = Ziggurat128::kArea / density(x);
  t.inside[0] = static_cast<std::uint32_t>(x / baseWidth * scale);
  t.width[0] = baseWidth / scale;
  t.height[0] = 1;
  t.width[127] = x / scale;
  t.height[127] = density(x);
  for (std::size_t i = 126; i >= 1; --i) {
    const double outer = x;
    x = std::sqrt(-2 * pinnedLog(Ziggurat128::kArea / outer + density(outer)));
    t.inside[i + 1] = static_cast<std::uint32_t>(x / outer * scale);
    t.width[i] = x / scale;
    t.height[i] = density(x);
  }
  t.inside[1] = 0;  // the top layer has no inner rectangle
  return t;
}

}  // namespace

Ziggurat128 const& Ziggurat128::tables() {
  static const Ziggurat128 tables = makeTables();
  return tables;
}

}  // namespace tfl_rng

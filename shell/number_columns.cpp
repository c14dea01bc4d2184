#include "shell/number_columns.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "language/strings.h"

namespace shell {

namespace {

// Whole numbers below this are shown with all their digits.
constexpr double kWhole = 1e16;

bool isFloat(txArray const& value) {
  return value.classID() == txClassDouble || value.classID() == txClassSingle;
}

// Part 0 is the real, 1 the imaginary one.
double partAt(txArray const& value, std::uint64_t position, int part) {
  std::uint64_t const at =
      value.isComplex() ? 2 * position + static_cast<std::uint64_t>(part) : position;
  return value.classID() == txClassSingle ? static_cast<double>(value.dataAs<float>()[at])
                                          : value.dataAs<double>()[at];
}

}  // namespace

NumberColumns::NumberColumns(txArray const& value, std::vector<std::uint64_t> const& positions,
                             int digits)
    : value_(value), isFloat_(isFloat(value)) {
  if (!isFloat_) return;
  bool whole = true;
  double largest = 0;
  double smallest = HUGE_VAL;
  for (std::uint64_t const position : positions) {
    for (int part = 0; part <= (value.isComplex() ? 1 : 0); ++part) {
      double const x = std::fabs(partAt(value, position, part));
      if (!std::isfinite(x)) continue;
      whole = whole && x == std::floor(x);
      largest = std::max(largest, x);
      if (x > 0) smallest = std::min(smallest, x);
    }
  }
  if (whole && largest < kWhole) return;
  int const high = static_cast<int>(std::floor(std::log10(largest)));
  int const low = static_cast<int>(std::floor(std::log10(std::min(smallest, largest))));
  // At most four digits of the largest may be lost on the smallest.
  if (high - low > std::min(4, digits - 2)) {
    notation_ = Notation::exponent;
    decimals_ = digits - 1;
    return;
  }
  notation_ = Notation::fixed;
  bool const plain = high >= -3 && high <= 3;
  factor_ = plain ? 0 : high;
  decimals_ = std::max(digits - 1 - std::max(high - factor_, -1), 0);
  // Zeros that end every number are left out.
  int needed = 0;
  for (std::uint64_t const position : positions) {
    for (int part = 0; part <= (value.isComplex() ? 1 : 0); ++part) {
      std::string const shown = one(partAt(value, position, part));
      std::size_t const last = shown.find_last_not_of('0');
      std::size_t const point = shown.find('.');
      if (point != std::string::npos) needed = std::max(needed, static_cast<int>(last - point));
    }
  }
  decimals_ = needed;
}

std::string NumberColumns::commonFactor() const {
  return factor_ == 0 ? "" : fmt::format(" times 1e{:+03d}", factor_);
}

// x / 10^factor_, also where the power itself is no double any more.
double NumberColumns::scaled(double x) const {
  constexpr int kLowest = -300;
  if (factor_ >= kLowest) return x / std::pow(10.0, factor_);
  return x * 1e300 / std::pow(10.0, factor_ - kLowest);
}

std::string NumberColumns::one(double x) const {
  if (std::isnan(x)) return "NaN";
  if (std::isinf(x)) return x < 0 ? "-Inf" : "Inf";
  bool const isZero = x == 0 && !value_.isComplex();  // a lone 0 says that it is exact
  switch (notation_) {
    case Notation::whole:
      return fmt::format("{:.0f}", x + 0.0);
    case Notation::exponent:
      return isZero ? "0" : fmt::format("{:.{}e}", x, decimals_);
    default:
      return isZero ? "0" : fmt::format("{:.{}f}", scaled(x), decimals_);
  }
}

std::string NumberColumns::text(std::uint64_t position) const {
  if (!isFloat_) return language::elementText(value_, position, 15);
  if (!value_.isComplex()) return one(partAt(value_, position, 0));
  double const imaginary = partAt(value_, position, 1);
  return one(partAt(value_, position, 0)) + (std::signbit(imaginary) ? " - " : " + ") +
         one(std::fabs(imaginary)) + "i";
}

}  // namespace shell

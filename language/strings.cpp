#include "language/strings.h"

#include <cstdio>
#include <functional>

#include "embedded_host/interrupt.h"
#include "embedded_host/text.h"
#include "language/broadcast.h"
#include "language/fault.h"

namespace language {

std::string numberText(double value, int digits) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value < 0 ? "-Inf" : "Inf";
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%.*g", digits, value);
  return buffer;
}

std::string elementText(txArray const& value, std::uint64_t index, int digits) {
  return visitElementType(value.classID(), [&]<class T>(T) -> std::string {
    T const* data = value.dataAs<T>();
    if constexpr (std::is_floating_point_v<T>) {
      if (!value.isComplex()) return numberText(data[index], digits);
      double const imaginary = data[2 * index + 1];
      std::string const magnitude = numberText(std::fabs(imaginary), digits);
      return numberText(data[2 * index], digits) + (std::signbit(imaginary) ? "-" : "+") +
             magnitude + "i";
    } else if constexpr (std::is_same_v<T, char16_t>) {
      return embedded_host::utf16ToUtf8(std::u16string_view(data + index, 1));
    } else {
      return std::to_string(+data[index]);
    }
  });
}

txArrayPtr toStrings(txArray const& value) {
  if (value.classID() == txClassString) return txShare(value);
  if (auto const text = value.scalarText()) return embedded_host::makeString(*text);
  if (!hasElements(value.classID())) {
    raiseFault("conversion", "A " + describe(value) + " cannot become a string.");
  }
  txArrayPtr const full = txToFull(value);
  txArrayPtr result = embedded_host::makeStrings(full->dims());
  embedded_host::each(full->numel(), [&](std::uint64_t i) {
    std::string text = elementText(*full, i, 15);
    if (full->isLogical()) text = text == "0" ? "false" : "true";
    embedded_host::setString(*result, i, embedded_host::utf8ToUtf16(text));
  });
  return result;
}

txArrayPtr applyToStrings(Operator op, txArray const& left, txArray const& right) {
  bool const joins = op == Operator::add;
  if (!joins && (op < Operator::equal || op > Operator::greaterEqual)) {
    raiseFault("operands", std::string("'") + spelling(op) + "' is not defined for strings.");
  }
  txArrayPtr const a = toStrings(left);
  txArrayPtr const b = toStrings(right);
  Broadcast const walk(*a, *b, spelling(op));
  // The walk runs over positions; the texts are looked up by them.
  std::vector<std::uint64_t> positions(std::max(a->numel(), b->numel()));
  for (std::size_t i = 0; i < positions.size(); ++i) positions[i] = i;
  struct Pair {
    std::uint64_t left;
    std::uint64_t right;
  };
  txArrayPtr result = joins ? embedded_host::makeStrings(walk.result())
                            : embedded_host::makeUninitialized(walk.result(), txClassLogical);
  std::vector<Pair> pairs(result->numel());
  walk.run(pairs.data(), positions.data(), positions.data(), [](std::uint64_t i, std::uint64_t j) {
    return Pair{i, j};
  });
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    auto const x = embedded_host::stringAt(*a, pairs[i].left);
    auto const y = embedded_host::stringAt(*b, pairs[i].right);
    if (joins) {
      if (x && y) {
        embedded_host::setString(*result, i, std::u16string(*x) + std::u16string(*y));
      } else {
        embedded_host::setString(*result, i, std::nullopt);
      }
      continue;
    }
    bool answer = op == Operator::notEqual;  // a missing string equals nothing
    if (x && y) {
      int const order = x->compare(*y);
      answer = op == Operator::equal       ? order == 0
               : op == Operator::notEqual  ? order != 0
               : op == Operator::less      ? order < 0
               : op == Operator::lessEqual ? order <= 0
               : op == Operator::greater   ? order > 0
                                           : order >= 0;
    }
    result->dataAs<bool>()[i] = answer;
  }
  return result;
}

}  // namespace language

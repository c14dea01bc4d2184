// Matrices from parts.

#include <algorithm>
#include <cstring>

#include "embedded_host/interrupt.h"
#include "language/cells.h"
#include "language/fault.h"
#include "language/operators.h"
#include "language/strings.h"

namespace language {

namespace {

// Cells win over everything, then strings, text, the first integer class, single, double; logicals
// stay logical among themselves.
txClassID commonClass(std::span<txArrayPtr const> values) {
  auto const rank = [](txClassID id) {
    switch (id) {
      case txClassCell:
        return 6;
      case txClassString:
        return 5;
      case txClassChar:
        return 4;
      case txClassSingle:
        return 2;
      case txClassDouble:
        return 1;
      case txClassLogical:
        return 0;
      default:
        return isIntegerClass(id) ? 3 : 7;
    }
  };
  txClassID common = values.empty() ? txClassDouble : values.front()->classID();
  for (auto const& value : values) {
    if (rank(value->classID()) > rank(common)) common = value->classID();
  }
  if (rank(common) == 7) {
    raiseFault(
        "concatenation",
        "Values of class " + describe(*values.front()) + " cannot be put together in a matrix.",
        "cells hold anything: {a, b}");
  }
  return common;
}

txArrayPtr convertFor(txArray const& value, txClassID target, bool complex) {
  if (target == txClassString) return toStrings(value);
  if (target == txClassCell) {
    return value.classID() == txClassCell ? txShare(value) : wrapInCell(txShare(value));
  }
  txArrayPtr converted = convertClass(value, target);
  return complex ? toComplex(*converted) : std::move(converted);
}

std::uint64_t extentAt(txArray const& value, std::size_t d) {
  return d < value.dims().size() ? value.dims()[d] : 1;
}

// The shape of the whole; parts of 0-by-0 were left out before.
Shape jointShape(std::span<txArrayPtr const> values, std::size_t dimension) {
  Shape shape = shapeOf(*values.front());
  shape.resize(std::max(shape.size(), dimension + 1), 1);
  for (auto const& value : values.subspan(1)) {
    for (std::size_t d = 0; d < std::max(shape.size(), value->dims().size()); ++d) {
      std::uint64_t const extent = extentAt(*value, d);
      std::uint64_t const so = d < shape.size() ? shape[d] : 1;
      if (d == dimension) {
        shape[d] += extent;
      } else if (extent != so) {
        bool const below = dimension == 0;
        raiseFault("sizes",
                   "A " + sizeText(values.front()->dims()) + " and a " + sizeText(value->dims()) +
                       " do not fit " +
                       (below            ? "one above the other."
                        : dimension == 1 ? "side by side."
                                         : "together."),
                   below            ? "rows of one matrix have the same number of columns"
                   : dimension == 1 ? "parts side by side have the same number of rows"
                                    : "");
      }
    }
  }
  return shape;
}

}  // namespace

txArrayPtr concatenate(std::span<txArrayPtr const> values, std::size_t dimension) {
  if (values.empty()) return emptyDouble();
  if (values.size() == 1) return txShare(*values.front());
  txClassID const target = commonClass(values);
  bool complex = false;
  for (auto const& value : values) complex = complex || value->isComplex();
  std::vector<txArrayPtr> parts;
  for (auto const& value : values) {
    // An empty matrix stands for nothing, whatever its class; an empty text joins a string.
    bool const nothing = value->dims().size() == 2 && value->dims()[0] == 0 &&
                         value->dims()[1] == 0 && target != txClassString;
    if (!nothing) parts.push_back(convertFor(*value, target, complex));
  }
  if (parts.empty()) return convertFor(*values.front(), target, complex);
  if (parts.size() == 1) return std::move(parts.front());
  Shape const shape = jointShape(parts, dimension);

  // Each part is a row of blocks: `before` elements, then those of the dimensions from there on.
  std::uint64_t outer = 1;
  for (std::size_t d = dimension + 1; d < shape.size(); ++d) outer *= shape[d];
  auto const blockOf = [&](txArray const& part) {
    std::uint64_t block = 1;
    for (std::size_t d = 0; d <= dimension; ++d) block *= extentAt(part, d);
    return block;
  };
  auto const eachBlock = [&](auto&& copy) {
    std::uint64_t to = 0;
    for (std::uint64_t o = 0; o < outer; ++o) {
      for (auto const& part : parts) {
        std::uint64_t const block = blockOf(*part);
        copy(to, *part, o * block, block);
        to += block;
      }
    }
  };
  if (target == txClassCell) {
    txArrayPtr result = txCreateCell(shape);
    eachBlock([&](std::uint64_t to, txArray const& part, std::uint64_t from, std::uint64_t count) {
      for (std::uint64_t i = 0; i < count; ++i) copyCell(*result, to + i, part, from + i);
    });
    return result;
  }
  if (target == txClassString) {
    txArrayPtr result = embedded_host::makeStrings(shape);
    eachBlock([&](std::uint64_t to, txArray const& part, std::uint64_t from, std::uint64_t count) {
      for (std::uint64_t i = 0; i < count; ++i) {
        embedded_host::setString(*result, to + i, embedded_host::stringAt(part, from + i));
      }
    });
    return result;
  }
  txArrayPtr result = embedded_host::makeUninitialized(
      shape, target, complex ? txComplexity::complex : txComplexity::real);
  std::size_t const bytes = embedded_host::elementBytes(target) * (complex ? 2 : 1);
  auto* out = static_cast<std::byte*>(result->data());
  eachBlock([&](std::uint64_t to, txArray const& part, std::uint64_t from, std::uint64_t count) {
    auto const* source = static_cast<std::byte const*>(part.data());
    embedded_host::inParts(count, [&](std::uint64_t begin, std::uint64_t end) {
      std::memcpy(out + (to + begin) * bytes, source + (from + begin) * bytes,
                  (end - begin) * bytes);
    });
  });
  return result;
}

}  // namespace language

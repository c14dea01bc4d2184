#include <algorithm>
#include <array>

#include "language/cells.h"
#include "language/fault.h"
#include "language/indexing.h"
#include "language/operators.h"
#include "language/selection.h"
#include "language/strings.h"

namespace language {

namespace {

// The class of target and value in one array, found as a matrix of both finds it.
txClassID jointClass(txArray const& target, txArray const& value) {
  txArray const& a = target;
  txArray const& b = value;
  if (a.classID() == b.classID()) return a.classID();
  // Empty double stands for "nothing yet".
  if (a.classID() == txClassDouble && a.isEmpty()) return b.classID();
  if (a.classID() == txClassCell || a.classID() == txClassString || isIntegerClass(a.classID())) {
    return a.classID();
  }
  if (hasElements(a.classID()) && hasElements(b.classID())) {
    auto const sample = [](txClassID id) { return embedded_host::makeZeros(Shape{1, 1}, id); };
    std::array<txArrayPtr, 2> const samples{sample(a.classID()), sample(b.classID())};
    return concatenate(samples, 1)->classID();
  }
  if (b.classID() == txClassCell) {
    raiseFault("cells", "A cell does not fit into a " + describe(a) + ".",
               "braces take what it holds: c{1}");
  }
  return b.classID();
}

txArrayPtr asClass(txArray const& value, txClassID target) {
  if (value.classID() == target) return value.isSparse() ? txToFull(value) : txShare(value);
  if (target == txClassString) return toStrings(value);
  if (target == txClassCell) {
    if (value.isEmpty() && value.classID() == txClassDouble) return txCreateCell(value.dims());
    return wrapInCell(txShare(value));
  }
  return convertClass(value, target);
}

// The shape that makes room for the subscripts.
Shape grownShape(txArray const& target, Subscripts const& subscripts,
                 std::vector<std::uint64_t> const& wholeCounts) {
  Shape shape = shapeOf(target);
  if (subscripts.size() == 1) {
    std::uint64_t const reach =
        subscripts[0].whole() ? std::max(target.numel(), target.isEmpty() ? wholeCounts[0] : 0)
                              : subscripts[0].reach();
    if (reach <= target.numel()) return shape;
    if (target.isEmpty() && shape.size() == 2 && shape[1] != 1) return {1, reach};
    if (shape.size() == 2 && shape[0] == 1) return {1, reach};
    if (shape.size() == 2 && shape[1] == 1) return {reach, 1};
    raiseFault("bounds",
               "Index " + std::to_string(reach) + " is beyond the end of a " +
                   sizeText(target.dims()) + " array, which cannot grow by one index.",
               "give one index for each dimension", 1);
  }
  if (shape.size() > subscripts.size()) {
    Shape const extents = foldedExtents(target, subscripts.size());
    for (std::size_t d = 0; d < subscripts.size(); ++d) {
      if (subscripts[d].reach() > extents[d]) {
        raiseFault("bounds",
                   "Index " + std::to_string(subscripts[d].reach()) +
                       " is beyond the end of dimension " + std::to_string(d + 1) + ".",
                   "give one index for each dimension", subscripts[d].position());
      }
    }
    return shape;
  }
  shape.resize(subscripts.size(), 1);
  for (std::size_t d = 0; d < subscripts.size(); ++d) {
    // `:` of a dimension that has nothing yet takes the value's extent.
    std::uint64_t const wanted = subscripts[d].whole() && target.isEmpty() && shape[d] == 0
                                     ? wholeCounts[d]
                                     : subscripts[d].reach();
    shape[d] = std::max(shape[d], wanted);
  }
  return shape;
}

// What `:` stands for in each place when the target has nothing there yet: the value's extents that
// the other subscripts do not account for, in order.
std::vector<std::uint64_t> wholeExtents(Subscripts const& subscripts, txArray const& value) {
  std::vector<std::uint64_t> extents(subscripts.size(), 0);
  if (subscripts.size() == 1) return {value.numel()};
  std::vector<std::uint64_t> left;
  std::size_t const wholes = static_cast<std::size_t>(
      std::count_if(subscripts.begin(), subscripts.end(), [](auto const& s) { return s.whole(); }));
  for (std::uint64_t const extent : value.dims()) {
    if (extent != 1 || value.dims().size() <= wholes) left.push_back(extent);
  }
  std::size_t next = 0;
  for (std::size_t d = 0; d < subscripts.size(); ++d) {
    if (subscripts[d].whole()) {
      extents[d] = next < left.size() ? left[next++] : 1;
    } else if (subscripts[d].count(0) != 1 && next < left.size() &&
               left[next] == subscripts[d].count(0)) {
      ++next;
    }
  }
  return extents;
}

// `target` with a new shape, every element kept at its indices, the new ones blank.
txArrayPtr grow(txArray const& target, Shape const& shape) {
  txArrayPtr result = makeBlank(target, shape);
  if (target.isEmpty()) return result;
  Dims const dims = target.dims();
  std::vector<std::uint64_t> strides{1};
  for (std::size_t d = 1; d < shape.size(); ++d) strides.push_back(strides[d - 1] * shape[d - 1]);
  copyElements(*result, target, [&](auto&& copy) {
    Shape at(dims.size(), 0);
    std::uint64_t base = 0;
    for (std::uint64_t from = 0; from < target.numel(); ++from) {
      copy(base, from);
      for (std::size_t d = 0; d < dims.size(); ++d) {
        base += strides[d];
        if (++at[d] < dims[d]) break;
        base -= strides[d] * dims[d];
        at[d] = 0;
      }
    }
  });
  return result;
}

// Whether the elements keep their places in column order when the array gets that shape: it grows
// along its last dimension, or had none.
bool growsBehind(txArray const& target, Shape const& shape) {
  if (target.isEmpty()) return true;
  std::size_t last = shape.size();
  while (last > 1 && shape[last - 1] == 1) --last;
  Shape const old = foldedExtents(target, last);
  return old.size() == last && std::equal(old.begin(), old.end() - 1, shape.begin()) &&
         old[last - 1] <= shape[last - 1];
}

Shape withoutOnes(Shape const& shape) {
  Shape kept;
  for (std::uint64_t const extent : shape) {
    if (extent != 1) kept.push_back(extent);
  }
  return kept;
}

void checkValueFits(Subscripts const& subscripts, Shape const& extents, txArray const& value) {
  if (value.isScalar()) return;
  Shape selected;
  std::uint64_t count = 1;
  for (std::size_t d = 0; d < subscripts.size(); ++d) {
    selected.push_back(subscripts[d].count(extents[d]));
    count *= selected.back();
  }
  bool const fits = subscripts.size() == 1 ? count == value.numel()
                                           : withoutOnes(selected) == withoutOnes(shapeOf(value));
  if (!fits) {
    raiseFault("sizes", "A " + sizeText(value.dims()) + " value does not fit into " +
                            (subscripts.size() == 1 ? elementCountText(count)
                                                    : sizeText(selected) + " elements") +
                            ".");
  }
}

}  // namespace

void writeElements(txArrayPtr& target, Subscripts const& subscripts, txArray const& value) {
  if (value.classID() == txClassObject || (target && target->classID() == txClassObject)) {
    raiseFault("index", "Objects do not form arrays.", "hold them in a cell array: c{1} = s");
  }
  txArrayPtr const nothing = target ? nullptr : emptyDouble();
  txArray const& old = target ? *target : *nothing;
  if (subscripts.empty()) raiseFault("index", "An index is missing.", "x(:) = value sets all");
  txClassID const joint = jointClass(old, value);
  txArrayPtr source = asClass(value, joint);
  Shape const shape = grownShape(old, subscripts, wholeExtents(subscripts, *source));
  bool const complex = source->isComplex() || old.isComplex();
  bool const isStored = target && old.classID() == joint && !old.isSparse() &&
                        old.isComplex() == complex && growsBehind(old, shape);
  // Everything that can fail comes before the target changes.
  txArrayPtr changed;
  if (!isStored) {
    changed = old.isEmpty() && old.classID() != joint ? makeBlank(*source, Shape{0, 0})
                                                      : asClass(old, joint);
    if (complex) changed = toComplex(*changed);
    if (complex) source = toComplex(*source);
    if (shape != shapeOf(*changed)) changed = grow(*changed, shape);
  } else if (complex) {
    source = toComplex(*source);
  }
  Shape const extents = foldedExtents(shape, subscripts.size());
  checkValueFits(subscripts, extents, *source);
  if (joint == txClassCell) checkCellContent(*source);
  if (isStored && shape != shapeOf(old)) embedded_host::extend(*target, shape);
  txArray& into = isStored ? *target : *changed;
  std::uint64_t const step = source->isScalar() ? 0 : 1;
  copyElements(into, *source, [&](auto&& copy) {
    forEachSelected(extents, subscripts,
                    [&](std::uint64_t i, std::uint64_t to) { copy(to, i * step); });
  });
  if (!isStored) target = std::move(changed);
}

void writeCell(txArrayPtr& target, Subscripts const& subscripts, txArrayPtr value) {
  if (target && target->classID() != txClassCell && !target->isEmpty()) {
    raiseFault("cells", "Braces write to cell arrays, and this is a " + describe(*target) + ".",
               "parentheses write elements: x(1) = value");
  }
  if (!target || target->classID() != txClassCell) {
    txArrayPtr cells = txCreateCell(Shape{0, 0});
    writeElements(cells, subscripts, *wrapInCell(std::move(value)));
    target = std::move(cells);
    return;
  }
  writeElements(target, subscripts, *wrapInCell(std::move(value)));
}

void deleteElements(txArrayPtr& target, Subscripts const& subscripts) {
  if (!target) raiseFault("index", "There is nothing to delete from.");
  if (target->classID() == txClassObject) raiseFault("index", "Objects do not form arrays.");
  Shape const extents = foldedExtents(*target, subscripts.size());
  // All subscripts but one take their whole dimension; that one shrinks.
  std::size_t shrinking = subscripts.size();
  for (std::size_t d = 0; d < subscripts.size(); ++d) {
    bool const whole = subscripts[d].whole();
    if (subscripts[d].reach() > extents[d]) {
      raiseFault("bounds",
                 "Index " + std::to_string(subscripts[d].reach()) +
                     " is beyond the end: there are " + std::to_string(extents[d]) + ".",
                 "", subscripts[d].position());
    }
    if (whole && (shrinking != subscripts.size() || d + 1 < subscripts.size())) continue;
    if (shrinking != subscripts.size()) {
      raiseFault("index", "Only whole rows, columns or pages can be deleted.",
                 "all indices but one are :", subscripts[d].position());
    }
    shrinking = d;
  }
  if (shrinking == subscripts.size()) shrinking = 0;
  if (subscripts[shrinking].count(extents[shrinking]) == 0) return;
  std::vector<bool> gone(extents[shrinking], false);
  for (std::uint64_t i = 0; i < subscripts[shrinking].count(extents[shrinking]); ++i) {
    gone[subscripts[shrinking][i]] = true;
  }
  // What stays, as a mask along that dimension.
  txArrayPtr keep = embedded_host::makeUninitialized(Shape{gone.size(), 1}, txClassLogical);
  for (std::size_t i = 0; i < gone.size(); ++i) keep->dataAs<bool>()[i] = !gone[i];
  Subscripts rest;
  for (std::size_t d = 0; d < subscripts.size(); ++d) {
    rest.emplace_back(d == shrinking ? keep.get() : nullptr, static_cast<int>(d) + 1);
  }
  bool const flat = subscripts.size() == 1 && !isVector(*target);
  txArrayPtr source = flat ? readElements(*target, {Subscript(nullptr, 1)}) : txShare(*target);
  txArrayPtr kept = readElements(*source, rest);
  target = flat ? applyUnary(Operator::transpose, *kept) : std::move(kept);
}

}  // namespace language

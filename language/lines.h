#pragma once

// Arrays seen as lines along one dimension: what reductions, sums and sorts work on.

#include <cstdint>

#include "embedded_host/interrupt.h"
#include "language/values.h"

namespace language {

class Lines {
 public:
  Lines(txArray const& value, std::size_t dimension)
      : shape_(shapeWithDimension(value, dimension)), at_(dimension), length_(shape_[dimension]) {
    for (std::size_t d = 0; d < dimension; ++d) stride_ *= shape_[d];
    for (std::size_t d = dimension + 1; d < shape_.size(); ++d) blocks_ *= shape_[d];
  }

  std::uint64_t length() const { return length_; }
  std::uint64_t stride() const { return stride_; }
  // The shape with another extent along the lines.
  Shape shapeWith(std::uint64_t extent) const {
    Shape shape = shape_;
    shape[at_] = extent;
    return shape;
  }
  // Calls visit(line, first): the lines in order, each with the position of its first element when
  // every line has `length` elements.
  template <class Visit>
  void forEach(std::uint64_t length, Visit&& visit) const {
    std::uint64_t line = 0;
    for (std::uint64_t block = 0; block < blocks_; ++block) {
      for (std::uint64_t offset = 0; offset < stride_; ++offset) {
        embedded_host::checkInterrupt();
        visit(line++, block * stride_ * length + offset);
      }
    }
  }

 private:
  static Shape shapeWithDimension(txArray const& value, std::size_t dimension) {
    Shape shape = shapeOf(value);
    shape.resize(std::max(shape.size(), dimension + 1), 1);
    return shape;
  }

  Shape shape_;
  std::size_t at_;
  std::uint64_t length_;
  std::uint64_t stride_ = 1;
  std::uint64_t blocks_ = 1;
};

}  // namespace language

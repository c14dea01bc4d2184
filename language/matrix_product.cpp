#include "embedded_host/array.h"
#include "embedded_host/interrupt.h"
#include "language/fault.h"
#include "language/operands.h"

namespace language {

namespace {

// Column by column: result(:,j) is the sum over k of left(:,k) * right(k,j).
template <class T>
txArrayPtr multiplyMatrices(txArray const& left, txArray const& right, txClassID target) {
  constexpr bool kComplex = std::is_same_v<T, Complex> || std::is_same_v<T, ComplexSingle>;
  std::uint64_t const rows = left.dims()[0];
  std::uint64_t const inner = left.dims()[1];
  std::uint64_t const columns = right.dims()[1];
  Operand<T> const a(left);
  Operand<T> const b(right);
  txArrayPtr result = embedded_host::makeZeros(
      Shape{rows, columns}, target, kComplex ? txComplexity::complex : txComplexity::real);
  T* out = result->dataAs<T>();
  for (std::uint64_t j = 0; j < columns; ++j) {
    for (std::uint64_t k = 0; k < inner; ++k) {
      T const factor = b.data()[j * inner + k];
      T* const column = out + j * rows;
      T const* const added = a.data() + k * rows;
      embedded_host::each(rows, [=](std::uint64_t i) { column[i] += added[i] * factor; });
    }
  }
  return kComplex ? dropZeroImaginary(std::move(result)) : std::move(result);
}

}  // namespace

txArrayPtr matrixProduct(txArray const& left, txArray const& right) {
  Typing const types = typing(Operator::multiply, left, right);
  if (!isMatrix(left) || !isMatrix(right) || left.dims()[1] != right.dims()[0]) {
    raiseFault("sizes",
               "A " + sizeText(left.dims()) + " and a " + sizeText(right.dims()) +
                   " matrix have no product.",
               "for the product element by element write .*");
  }
  switch (types.domain) {
    case Domain::complex:
      return multiplyMatrices<Complex>(left, right, types.result);
    case Domain::complexSingle:
      return multiplyMatrices<ComplexSingle>(left, right, types.result);
    case Domain::single:
      return multiplyMatrices<float>(left, right, types.result);
    default:
      if (types.result != txClassDouble) {
        raiseFault("operands", "Matrices of integers have no product.",
                   "convert them: double(a)*double(b); element by element write .*");
      }
      return multiplyMatrices<double>(left, right, types.result);
  }
}

}  // namespace language

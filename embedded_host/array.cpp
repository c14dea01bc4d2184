// The array's common part: construction, shape, access to elements.

#include "embedded_host/array.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "embedded_host/array_impl.h"
#include "embedded_host/interrupt.h"
#include "embedded_host/messages.h"
#include "embedded_host/sizes.h"
#include "embedded_host/text.h"

namespace embedded_host {

namespace {

constexpr std::array<std::uint64_t, 2> kOneByOne{1, 1};

// Bytes per element of a class in memory, whatever it holds, for the check of the size.
std::size_t storedBytes(txClassID classID) noexcept {
  if (std::size_t const bytes = elementBytes(classID)) return bytes;
  return classID == txClassString ? sizeof(std::optional<HostText>) : sizeof(txArrayPtr);
}

txArrayPtr makeFull(Dims dims, txClassID classID, txComplexity complexity) {
  bool const complex = complexity == txComplexity::complex;
  std::size_t const each = elementBytes(classID) * (complex ? 2 : 1);
  if (each == 0) raiseHostError("TALVOR:array:InvalidClass", static_cast<int>(classID));
  if (complex && (classID == txClassLogical || classID == txClassChar)) {
    raiseHostError("TALVOR:array:ComplexClass", builtinClassName(classID));
  }
  std::uint64_t const count = countElements(dims, each);
  return makeImpl(classID, dims, Elements(count * each), complexity);
}

// A narrow character counts as the code unit of its value, 0 to 255.
template <class Char>
using UnitOf = std::conditional_t<sizeof(Char) == 1, unsigned char, char16_t>;

template <class Char>
txArrayPtr makeCharRow(std::basic_string_view<Char> text) {
  std::array<std::uint64_t, 2> const dims{text.empty() ? 0u : 1u, text.size()};
  txArrayPtr result = makeUninitialized(dims, txClassChar);
  std::transform(text.begin(), text.end(), result->dataAs<char16_t>(),
                 [](Char c) { return static_cast<char16_t>(static_cast<UnitOf<Char>>(c)); });
  return result;
}

}  // namespace

Dimensions::Dimensions(Dims dims) : size_(dims.size()), few_{1, 1, 1} {
  while (size_ > 2 && dims[size_ - 1] == 1) --size_;
  Dims const kept = dims.first(size_);
  if (size_ > kFew) {
    many_.assign(kept.begin(), kept.end());
  } else {
    std::copy(kept.begin(), kept.end(), few_.begin());
  }
  size_ = std::max<std::size_t>(size_, 2);
}

Cells::Cells(Cells const& other) {
  items.reserve(other.items.size());
  for (auto const& item : other.items) items.push_back(item ? txShare(*item) : nullptr);
}

std::size_t elementBytes(txClassID classID) noexcept {
  switch (classID) {
    case txClassLogical:
    case txClassInt8:
    case txClassUint8:
      return 1;
    case txClassChar:
    case txClassInt16:
    case txClassUint16:
      return 2;
    case txClassSingle:
    case txClassInt32:
    case txClassUint32:
      return 4;
    case txClassDouble:
    case txClassInt64:
    case txClassUint64:
      return 8;
    default:
      return 0;
  }
}

txArrayPtr makeUninitialized(Dims dims, txClassID classID, txComplexity complexity) {
  return makeFull(dims, classID, complexity);
}

txArrayPtr makeZeros(Dims dims, txClassID classID, txComplexity complexity) {
  txArrayPtr result = makeFull(dims, classID, complexity);
  Elements& elements = *impl(*result).holds<Elements>();
  auto* const bytes = static_cast<std::byte*>(elements.writable());
  inParts(elements.bytes(),
          [=](std::size_t begin, std::size_t end) { std::memset(bytes + begin, 0, end - begin); });
  return result;
}

txArrayPtr makeComplex(double real, double imaginary) {
  txArrayPtr result = makeFull(kOneByOne, txClassDouble, txComplexity::complex);
  result->dataAs<double>()[0] = real;
  result->dataAs<double>()[1] = imaginary;
  return result;
}

txArrayPtr makeTextUtf8(std::string_view utf8) {
  return makeCharRow(std::u16string_view(utf8ToUtf16(utf8)));
}

txArrayPtr makeClassIdentifier(std::u16string_view className) {
  return makeImpl(txClassClassIdentifier, kOneByOne, HostText(className));
}

txArrayPtr reshape(txArray const& array, Dims dims) {
  if (array.isSparse() || array.classID() == txClassObject ||
      array.classID() == txClassClassIdentifier) {
    raiseHostError("TALVOR:array:CannotReshape");
  }
  std::uint64_t const count = countElements(dims, storedBytes(array.classID()));
  if (count != array.numel()) raiseHostError("TALVOR:array:ElementCount", array.numel(), count);
  txArrayPtr result = txShare(array);
  impl(*result).dimensions = Dimensions(dims);
  return result;
}

void extend(txArray& array, Dims dims) {
  Array& it = impl(array);
  std::size_t const each = elementBytes(it.id) * (it.complex ? 2 : 1);
  std::uint64_t const count = countElements(dims, each == 0 ? storedBytes(it.id) : each);
  Dimensions extents(dims);
  if (auto* elements = it.holds<Elements>()) {
    elements->extend(count * each);
  } else if (auto* cells = it.shares<Cells>()) {
    cells->own().items.resize(count);
  } else if (auto* strings = it.shares<Strings>()) {
    strings->own().resize(count, HostText());
  }
  it.dimensions = std::move(extents);
  it.count = count;
}

txArrayPtr makeStrings(Dims dims) {
  std::uint64_t const count = countElements(dims, storedBytes(txClassString));
  return makeImpl(txClassString, dims, Shared<Strings>::make(count, std::optional<HostText>(u"")));
}

txArrayPtr makeString(std::u16string_view text) {
  txArrayPtr result = makeStrings(kOneByOne);
  setString(*result, 0, text);
  return result;
}

txArrayPtr makeMissingString() {
  txArrayPtr result = makeStrings(kOneByOne);
  setString(*result, 0, std::nullopt);
  return result;
}

std::optional<std::u16string_view> stringAt(txArray const& array, std::uint64_t index) {
  auto const* strings = impl(array).shares<Strings>();
  if (!strings || index >= array.numel()) {
    raiseHostError("TALVOR:array:IndexOutOfRange", index + 1, array.numel());
  }
  auto const& text = (**strings)[index];
  return text ? std::optional<std::u16string_view>(*text) : std::nullopt;
}

void setString(txArray& array, std::uint64_t index, std::optional<std::u16string_view> text) {
  auto* strings = impl(array).shares<Strings>();
  if (!strings || index >= array.numel()) {
    raiseHostError("TALVOR:array:IndexOutOfRange", index + 1, array.numel());
  }
  auto& element = strings->own()[index];
  element = text ? std::optional<HostText>(*text) : std::nullopt;
}

}  // namespace embedded_host

using embedded_host::Array;
using embedded_host::Cells;
using embedded_host::Elements;
using embedded_host::impl;

txClassID txArray::classID() const noexcept { return impl(*this).id; }
std::span<const std::uint64_t> txArray::dims() const noexcept {
  return impl(*this).dimensions.view();
}
std::uint64_t txArray::numel() const noexcept { return impl(*this).count; }
bool txArray::isComplex() const noexcept { return impl(*this).complex; }
bool txArray::isSparse() const noexcept {
  return impl(*this).shares<embedded_host::SparseElements>() != nullptr;
}

void const* txArray::data() const noexcept {
  auto const* elements = impl(*this).holds<Elements>();
  return elements ? elements->data() : nullptr;
}

void* txArray::data() {
  auto* elements = impl(*this).holds<Elements>();
  return elements ? elements->writable() : nullptr;
}

txArray const* txArray::cell(std::uint64_t index) const noexcept {
  auto const* cells = impl(*this).shares<Cells>();
  return cells && index < numel() ? (*cells)->items[index].get() : nullptr;
}

void txArray::setCell(std::uint64_t index, txArrayPtr value) {
  auto* cells = impl(*this).shares<Cells>();
  if (!cells || index >= numel()) {
    embedded_host::raiseHostError("TALVOR:array:IndexOutOfRange", index + 1, numel());
  }
  cells->own().items[index] = std::move(value);
}

void txDestroy_deleter::operator()(txArray* array) const noexcept {
  delete static_cast<Array*>(array);
}

txArrayPtr txCreateUninitialized(std::span<const std::uint64_t> dims, txClassID classID,
                                 txComplexity complexity) {
  if (classID == txClassChar) {
    embedded_host::raiseHostError("TALVOR:array:InvalidClass", static_cast<int>(classID));
  }
  return embedded_host::makeUninitialized(dims, classID, complexity);
}

txArrayPtr txCreateDouble(double value) { return embedded_host::makeScalar(value); }
txArrayPtr txCreateLogical(bool value) { return embedded_host::makeScalar(value); }
txArrayPtr txCreateText(std::string_view ascii) { return embedded_host::makeCharRow(ascii); }
txArrayPtr txCreateText(std::u16string_view text) { return embedded_host::makeCharRow(text); }

txArrayPtr txCreateCell(std::span<const std::uint64_t> dims) {
  std::uint64_t const count =
      embedded_host::countElements(dims, embedded_host::storedBytes(txClassCell));
  return embedded_host::makeImpl(txClassCell, dims, embedded_host::Shared<Cells>::make(count));
}

txArrayPtr txShare(txArray const& array) { return embedded_host::makeImpl(impl(array)); }

// Arrays: creation, access, conversion.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "tests/second_host/value.h"

namespace second_host {

namespace {

struct ClassRow {
  char const* name;
  std::size_t bytes;
};
constexpr ClassRow kClasses[] = {
    {"unknown", 0}, {"cell", 0},   {"object", 0}, {"logical", 1}, {"char", 2},    {"string", 0},
    {"double", 8},  {"single", 4}, {"int8", 1},   {"uint8", 1},   {"int16", 2},   {"uint16", 2},
    {"int32", 4},   {"uint32", 4}, {"int64", 8},  {"uint64", 8},  {"class id", 0}};

// Larger than any machine's memory.
constexpr std::uint64_t kMostBytes = std::uint64_t{1} << 46;

txArrayPtr own(std::shared_ptr<Value> value) { return txArrayPtr(new Array(std::move(value))); }

txArrayPtr create(std::span<const std::uint64_t> dims, txClassID classID, bool complex) {
  auto value = std::make_shared<Value>();
  value->classID = classID;
  value->dims.assign(dims.begin(), dims.end());
  while (value->dims.size() > 2 && value->dims.back() == 1) value->dims.pop_back();
  value->complex = complex;
  std::uint64_t bytes = elementBytes(classID) * (complex ? 2 : 1);
  bool tooMany = false;
  for (std::uint64_t d : dims) tooMany |= __builtin_mul_overflow(bytes, d, &bytes);
  if (std::ranges::find(dims, 0u) == dims.end() && (tooMany || bytes > kMostBytes))
    raise("TALVOR:array:SizeLimitExceeded");
  if (elementBytes(classID) > 0) value->elements = txMakeBuffer<std::byte>(value->bytes());
  return own(std::move(value));
}

template <class Element>
txArrayPtr scalar(Element element, txClassID classID) {
  txArrayPtr result = create(std::array<std::uint64_t, 2>{1, 1}, classID, false);
  *result->dataAs<Element>() = element;
  return result;
}

template <class Text>
txArrayPtr textOf(Text text) {
  std::array<std::uint64_t, 2> const dims{text.empty() ? 0u : 1u, text.size()};
  txArrayPtr result = create(dims, txClassChar, false);
  std::ranges::copy(text, result->dataAs<char16_t>());
  return result;
}

// Number `i` of an array: of a complex one, parts count.
double number(txArray const& array, std::uint64_t i) {
  switch (array.classID()) {
    case txClassLogical:
      return array.dataAs<bool>()[i];
    case txClassChar:
      return array.dataAs<char16_t>()[i];
    case txClassDouble:
      return array.dataAs<double>()[i];
    case txClassSingle:
      return static_cast<double>(array.dataAs<float>()[i]);
    case txClassInt8:
      return array.dataAs<std::int8_t>()[i];
    case txClassUint8:
      return array.dataAs<std::uint8_t>()[i];
    case txClassInt16:
      return array.dataAs<std::int16_t>()[i];
    case txClassUint16:
      return array.dataAs<std::uint16_t>()[i];
    case txClassInt32:
      return array.dataAs<std::int32_t>()[i];
    case txClassUint32:
      return array.dataAs<std::uint32_t>()[i];
    case txClassInt64:
      return static_cast<double>(array.dataAs<std::int64_t>()[i]);
    case txClassUint64:
      return static_cast<double>(array.dataAs<std::uint64_t>()[i]);
    default:
      raise("TALVOR:invalidConversion", {builtinName(array.classID())});
  }
}

}  // namespace

std::size_t elementBytes(txClassID classID) noexcept { return kClasses[classID].bytes; }
char const* builtinName(txClassID classID) noexcept { return kClasses[classID].name; }

std::uint64_t Value::numel() const noexcept {
  std::uint64_t count = 1;
  for (std::uint64_t d : dims) count *= d;
  return count;
}
std::size_t Value::bytes() const noexcept {
  return numel() * elementBytes(classID) * (complex ? 2 : 1);
}

txArrayPtr makeObject(std::string className, Properties properties) {
  txArrayPtr object = create(std::array<std::uint64_t, 2>{1, 1}, txClassObject, false);
  valueOf(*object).className = std::move(className);
  valueOf(*object).properties = std::move(properties);
  return object;
}

}  // namespace second_host

using second_host::valueOf;

void txDestroy_deleter::operator()(txArray* array) const noexcept {
  delete static_cast<second_host::Array*>(array);
}

txClassID txArray::classID() const noexcept { return valueOf(*this).classID; }
std::span<const std::uint64_t> txArray::dims() const noexcept { return valueOf(*this).dims; }
std::uint64_t txArray::numel() const noexcept { return valueOf(*this).numel(); }
bool txArray::isComplex() const noexcept { return valueOf(*this).complex; }
bool txArray::isSparse() const noexcept { return false; }
void const* txArray::data() const noexcept { return valueOf(*this).elements.get(); }
void* txArray::data() {
  auto& array = static_cast<second_host::Array&>(*this);
  if (array.value->elements && array.value.use_count() > 1) {
    txArrayPtr const copy = second_host::create(dims(), classID(), isComplex());
    std::memcpy(valueOf(*copy).elements.get(), array.value->elements.get(), array.value->bytes());
    array.value = static_cast<second_host::Array&>(*copy).value;
  }
  return array.value->elements.get();
}
double txArray::scalarAsDouble() const { return second_host::number(*this, 0); }
std::optional<std::u16string> txArray::scalarText() const {
  bool const isRow = dims().size() == 2 && (dims()[0] == 1 || numel() + dims()[1] == 0);
  if (classID() != txClassChar || !isRow) return std::nullopt;
  return std::u16string(dataAs<char16_t>(), numel());
}
txArray const* txArray::cell(std::uint64_t index) const noexcept {
  auto const& cells = valueOf(*this).cells;
  return index < cells.size() ? cells[index].get() : nullptr;
}
void txArray::setCell(std::uint64_t index, txArrayPtr value) {
  auto& cells = valueOf(*this).cells;
  if (index >= cells.size()) second_host::raise("TALVOR:array:IndexOutOfRange");
  cells[index] = std::move(value);
}

txArrayPtr txCreateUninitialized(std::span<const std::uint64_t> dims, txClassID classID,
                                 txComplexity complexity) {
  return second_host::create(dims, classID, complexity == txComplexity::complex);
}
txArrayPtr txCreateDouble(double value) { return second_host::scalar(value, txClassDouble); }
txArrayPtr txCreateLogical(bool value) { return second_host::scalar(value, txClassLogical); }
txArrayPtr txCreateText(std::string_view ascii) { return second_host::textOf(ascii); }
txArrayPtr txCreateText(std::u16string_view text) { return second_host::textOf(text); }
txArrayPtr txCreateCell(std::span<const std::uint64_t> dims) {
  txArrayPtr cell = second_host::create(dims, txClassCell, false);
  valueOf(*cell).cells.resize(cell->numel());
  return cell;
}
txArrayPtr txShare(txArray const& array) {
  return second_host::own(static_cast<second_host::Array const&>(array).value);
}

txArrayPtr txToFull(txArray const& array) { return txShare(array); }
txArrayPtr txToDouble(txArray const& array) {
  if (array.classID() == txClassDouble) return txShare(array);
  if (!array.data()) second_host::raise("TALVOR:invalidConversion");
  txArrayPtr result = second_host::create(array.dims(), txClassDouble, array.isComplex());
  std::uint64_t const count = array.numel() * (array.isComplex() ? 2 : 1);
  for (std::uint64_t i = 0; i < count; ++i)
    result->dataAs<double>()[i] = second_host::number(array, i);
  return result;
}
bool txToLogical(txArray const& array) {
  if (!array.data()) second_host::raise("TALVOR:invalidConversion");
  if (!array.isScalar()) second_host::raise("TALVOR:logical:NotScalar");
  if (array.isComplex()) second_host::raise("TALVOR:logical:Complex");
  double const value = array.scalarAsDouble();
  if (std::isnan(value)) second_host::raise("TALVOR:logical:NaN");
  return value != 0;
}
char* txArrayToString(txArray const& array) {
  if (array.classID() != txClassChar) return nullptr;
  std::span const units(array.dataAs<char16_t>(), array.numel());
  auto text = txMakeBuffer<char>(units.size() + 1);
  *std::ranges::transform(units, text.get(), [](char16_t unit) {
     return unit < 256 ? static_cast<char>(unit) : '?';
   }).out = '\0';
  return text.release();
}
std::u16string txArrayToU16String(txArray const& array) {
  if (array.classID() != txClassChar)
    second_host::raise("TALVOR:string:MustBeStringScalarOrCharacterVector");
  return {array.dataAs<char16_t>(), array.numel()};
}

txArrayPtr txGetProperty(txArray const& object, std::string_view name) {
  auto const& properties = valueOf(object).properties;
  auto const found = properties.find(name);
  return found == properties.end() ? nullptr : txShare(*found->second);
}

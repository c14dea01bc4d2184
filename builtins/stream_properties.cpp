// The native properties of a stream object: one table, tried from the top.

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "builtins/inline_buffer.h"
#include "builtins/scalars.h"
#include "builtins/stream_methods.h"
#include "errors/argument_counts.h"
#include "errors/explained.h"
#include "errors/keys.h"
#include "host/strings.h"
#include "rng/randstream.h"
#include "rng/state_components.h"
#include "rng/stream_handle.h"

namespace RandStream {

using namespace builtins;

namespace {

namespace set_keys = TALVOR::RandStream::set;

constexpr int kValuePosition = 3;

// One column for a state of one component, otherwise a cell row of them.
txArrayPtr readState(randstream const& stream) {
  StateComponents const layout(stream);
  InlineBuffer<txArrayPtr> columns(layout.count());
  InlineBuffer<void*> elements(layout.count());
  for (std::size_t i = 0; i < layout.count(); ++i) {
    columns.data()[i] = txCreateUninitialized(std::array<std::uint64_t, 2>{layout.length(i), 1},
                                              layout.elementClass(i).classID);
    elements.data()[i] = columns.data()[i]->data();
  }
  stream.getStateComponents(layout.count(), elements.data());
  if (layout.count() == 1) return std::move(columns.data()[0]);
  txArrayPtr cell = txCreateCell(std::array<std::uint64_t, 2>{1, layout.count()});
  for (std::size_t i = 0; i < layout.count(); ++i) cell->setCell(i, std::move(columns.data()[i]));
  return cell;
}

void writeState(randstream& stream, txArray const& value) {
  StateComponents const layout(stream);
  char const* const type = stream.generatorType();
  bool const single = layout.count() == 1;
  if (!single && (value.classID() != txClassCell || value.numel() != layout.count()))
    errors::raise(set_keys::InvalidNumStateComponents(type), kValuePosition);
  InlineBuffer<void const*> elements(layout.count());
  for (std::size_t i = 0; i < layout.count(); ++i) {
    txArray const* const component = single ? &value : value.cell(i);
    if (!component) errors::raise(set_keys::InvalidNumStateComponents(type), kValuePosition);
    // Complex and sparse arrays of the right class lay their elements out in another way.
    if (component->classID() != layout.elementClass(i).classID || component->isComplex() ||
        component->isSparse())
      errors::raise(set_keys::InvalidStateClass(type), kValuePosition);
    if (component->numel() != layout.length(i))
      errors::raise(set_keys::InvalidStateLen(type), kValuePosition);
    elements.data()[i] = component->data();
  }
  stream.setStateComponents(layout.count(), elements.data());
}

// Indices count from 1 here and are doubles as long as that is of use.
txArrayPtr readSubstream(randstream const& stream) {
  constexpr std::uint64_t kTooLargeForDouble = std::uint64_t{1} << 48;
  std::uint64_t const index = stream.getSubstream() + 1;
  if (stream.getSubstream() <= kTooLargeForDouble - 2)
    return txCreateDouble(static_cast<double>(index));
  txWarningMsgId(TALVOR::RandStream::get::SubstreamIndexTooLarge());
  return makeScalar<std::uint64_t>(txClassUint64, index);
}

void writeSubstream(randstream& stream, txArray const& value) {
  std::uint64_t const index = toCount(value).value_or(0);
  if (index == 0) errors::raise(set_keys::InvalidSubstreamIndex(), kValuePosition);
  stream.setSubstream(index - 1);
}

txArrayPtr readRandnAlg(randstream const& stream) {
  return txCreateText(std::string_view(stream.getRandnAlg()));
}

void writeRandnAlg(randstream& stream, txArray const& value) {
  std::string name = utToAscii(txArrayToU16String(value));
  std::ranges::transform(name, name.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  std::ranges::replace(name, '\0', '?');  // would end the name, and is in none
  stream.setRandnAlg(name.c_str());
}

txArrayPtr readAntithetic(randstream const& stream) { return txCreateLogical(stream.antithetic()); }

void writeAntithetic(randstream& stream, txArray const& value) {
  if (!value.isScalar()) errors::raise(set_keys::InvalidAntithetic(), kValuePosition);
  stream.setAntithetic(txToLogical(value));
}

txArrayPtr readFullPrecision(randstream const& stream) {
  return txCreateLogical(stream.fullPrecision());
}

void writeFullPrecision(randstream& stream, txArray const& value) {
  if (!value.isScalar()) errors::raise(set_keys::InvalidFullPrecision(), kValuePosition);
  stream.setFullPrecision(txToLogical(value));
}

txArrayPtr readParameters(randstream const& stream) {
  if (!stream.hasSubstreams()) {
    // The identifier of getStreamParameters, whose text speaks of a fault. This is none.
    errors::raiseWithTextOf(set_keys::SubstreamsNotSupported(stream.generatorType()),
                            component_TALVOR::catalog_RandStream::key_UnexpectedPluginError());
  }
  randstream::streamParamsStruct limits;
  stream.getStreamParameters(&limits);
  txArrayPtr result = txCreateUninitialized(std::array<std::uint64_t, 2>{4, 1}, txClassUint64);
  std::ranges::copy(std::array{limits.numStreams, limits.numSubstreams, limits.log2StreamLen,
                               limits.log2SubstreamLen},
                    result->dataAs<std::uint64_t>());
  return result;
}

struct Property {
  std::u16string_view name;
  std::size_t fewestCharacters;
  txArrayPtr (*read)(randstream const&);
  void (*write)(randstream&, txArray const&);  // null: read-only
};

constexpr Property kProperties[] = {
    {u"state", 2, readState, writeState},
    {u"substream", 2, readSubstream, writeSubstream},
    {u"randnalg", 1, readRandnAlg, writeRandnAlg},
    {u"antithetic", 1, readAntithetic, writeAntithetic},
    {u"fullprecision", 1, readFullPrecision, writeFullPrecision},
    {u"parameters", 1, readParameters, nullptr},
};

bool isNamed(Property const& property, std::u16string_view given) {
  auto const lower = [](char16_t c) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c - u'A' + u'a') : c;
  };
  return given.size() >= property.fewestCharacters &&
         std::ranges::equal(given, property.name.substr(0, given.size()), {}, lower);
}

}  // namespace

void getset(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  errors::checkCounts(nlhs, 1, nrhs, 2, 3);
  std::u16string const name = txArrayToU16String(*prhs[0]);
  std::shared_ptr<randstream> const stream = streamOfObject(*prhs[1]);
  auto const* const property = std::ranges::find_if(
      kProperties, [&](Property const& candidate) { return isNamed(candidate, name); });
  if (property == std::end(kProperties)) return;
  if (nrhs == 2) {
    plhs[0] = property->read(*stream);
    return;
  }
  if (nlhs != 0 || !property->write) errors::raise(set_keys::WrongNumberArgs());
  property->write(*stream, *prhs[2]);
}

}  // namespace RandStream

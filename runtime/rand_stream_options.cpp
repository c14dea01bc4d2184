#include "runtime/rand_stream_options.h"

#include <algorithm>
#include <optional>
#include <random>

#include "embedded_host/array.h"
#include "embedded_host/dispatcher.h"
#include "embedded_host/messages.h"
#include "embedded_host/text.h"
#include "errors/explained.h"
#include "errors/keys.h"
#include "language/values.h"
#include "rng/generator_names.h"
#include "tfl_rng/convert.h"
#include "vmstate/global_stream.h"

namespace runtime {
namespace {

namespace keys = TALVOR::RandStream::create;
using embedded_host::equalIgnoringAsciiCase;

std::optional<std::string> textOf(txArray const& value) {
  std::optional<std::u16string> const text = value.scalarText();
  if (!text) return std::nullopt;
  return embedded_host::utf16ToUtf8(*text);
}

std::string parseType(txArray const& value) {
  std::optional<std::string> const given = textOf(value);
  if (!given) errors::raise(keys::InvalidRNGType(), 1);
  if (auto const* const generator = rng::findGenerator(*given)) return generator->name;
  errors::raiseExplained(keys::UnknownRNGType(*given),
                         errors::didYouMean(rng::closestGenerator(*given)), 1);
}

std::string shippedType() {
  txArrayPtr type;
  getFactoryDefaultRandStreamType(1, &type, 0, nullptr);
  return parseType(*type);
}

// The elements of a real numeric array as whole numbers of [low, high]; nothing when one is not.
std::optional<std::vector<std::uint64_t>> toCounts(txArray const& value, std::uint64_t low,
                                                   std::uint64_t high) {
  if (!value.isNumeric() || value.isComplex()) return std::nullopt;
  txArrayPtr const full = txToFull(value);
  std::vector<std::uint64_t> counts;
  bool const inside = language::visitElementType(value.classID(), [&]<class T>(T) {
    return std::ranges::all_of(embedded_host::elementsOf<T>(*full), [&](T element) {
      auto const count = tfl_rng::toCount(element);
      counts.push_back(count.value_or(0));
      return count && *count >= low && *count <= high;
    });
  });
  return inside && !counts.empty() ? std::optional(std::move(counts)) : std::nullopt;
}

std::optional<std::uint64_t> toCount(txArray const& value, std::uint64_t low, std::uint64_t high) {
  auto const counts = toCounts(value, low, high);
  return counts && counts->size() == 1 ? std::optional(counts->front()) : std::nullopt;
}

constexpr std::uint64_t kAnyCount = ~std::uint64_t{0};

void setSeed(RandStreamOptions& options, txArray const& value, int position) {
  std::optional<std::string> const text = textOf(value);
  if (text && equalIgnoringAsciiCase(*text, "entropy")) {
    options.seed = std::random_device()();
    return;
  }
  std::optional<std::uint64_t> const seed = toCount(value, 0, 0xFFFFFFFF);
  if (!seed) errors::raise(keys::BadSeed(), position);
  options.seed = static_cast<std::uint32_t>(*seed);
}

void setNumStreams(RandStreamOptions& options, txArray const& value, int position) {
  std::optional<std::uint64_t> const count = toCount(value, 1, kAnyCount);
  if (!count) errors::raise(keys::BadNumStreams(), position);
  options.numStreams = *count;
}

void setStreamIndices(RandStreamOptions& options, txArray const& value, int position) {
  auto indices = toCounts(value, 1, kAnyCount);
  if (!indices) errors::raise(keys::BadStreamIndex(), position);
  options.streamIndices = std::move(*indices);
}

void setCellOutput(RandStreamOptions& options, txArray const& value, int /*position*/) {
  options.cellOutput = txToLogical(value);
}

// An option, or a native property of the stream (no parser).
struct Option {
  char const* name;
  void (*parse)(RandStreamOptions& options, txArray const& value, int position);
};
constexpr Option kOptions[] = {
    {"Seed", setSeed},
    {"NumStreams", setNumStreams},
    {"StreamIndices", setStreamIndices},
    {"CellOutput", setCellOutput},
    {"RandnAlg", nullptr},
    {"Antithetic", nullptr},
    {"FullPrecision", nullptr},
    {"Substream", nullptr},
};

Option const& findOption(txArray const& given, int position) {
  std::optional<std::string> const text = textOf(given);
  if (!text) {
    errors::raise(embedded_host::HostKey("TALVOR:RandStream:create:InvalidOption",
                                         {language::describe(given)}),
                  position);
  }
  std::string const& name = *text;
  std::vector<std::string> known;
  for (Option const& option : kOptions) {
    if (equalIgnoringAsciiCase(option.name, name)) return option;
    known.emplace_back(option.name);
  }
  errors::raiseExplained(embedded_host::HostKey("TALVOR:RandStream:create:UnknownOption", {name}),
                         errors::didYouMean(embedded_host::closestName(name, known)), position);
}

}  // namespace

RandStreamOptions parseRandStreamOptions(std::span<txArray const* const> args) {
  RandStreamOptions options;
  options.type = args.empty() ? shippedType() : parseType(*args[0]);
  int indicesPosition = 0;
  for (std::size_t i = 1; i < args.size(); i += 2) {
    int const position = static_cast<int>(i) + 1;
    Option const& option = findOption(*args[i], position);
    if (i + 1 == args.size())
      embedded_host::raiseHostError("TALVOR:RandStream:create:MissingValue", option.name);
    if (option.parse == setStreamIndices) indicesPosition = position + 1;
    if (option.parse)
      option.parse(options, *args[i + 1], position + 1);
    else
      options.settings.push_back({option.name, args[i + 1], position + 1});
  }
  if (std::ranges::max(options.streamIndices) > options.numStreams)
    errors::raise(keys::BadStreamIndex(), indicesPosition);
  return options;
}

}  // namespace runtime

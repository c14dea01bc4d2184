#include "shell/stream_options.h"

#include <fmt/format.h>

#include <cmath>
#include <type_traits>

#include "language/values.h"
#include "shell/options.h"

namespace shell {

char const kStreamUsage[] =
    "usage: tvrng stream [options]\n"
    "\n"
    "  --generator NAME   twister, philox, ...: `tvrng -e generators` has all (mt19937ar)\n"
    "  --seed N           0 to 4294967295 (0)\n"
    "  --streams N        how many streams the set has (1)\n"
    "  --stream I         which one of them, from 1 (1)\n"
    "  --substream K      which substream, from 1 (1)\n"
    "  --dist KIND        uniform, single, normal, integers (uniform)\n"
    "  --method NAME      for normals: Ziggurat, Polar, Inversion (the generator's own)\n"
    "  --type CLASS       for integers: int8, uint8, int16, uint16, int32, uint32 (uint32);\n"
    "                     for normals: double, single (double)\n"
    "  --range LOW:HIGH   for integers (all that the class holds)\n"
    "  --count N          how many values, 1e9 is a number too, or endless (endless)\n"
    "  --format KIND      text, a value a line; csv, with a first line of its name; npy, for "
    "NumPy;\n"
    "                     raw, little-endian values one after the other (text)\n"
    "  --raw              --format raw\n"
    "  --antithetic       the stream's antithetic values\n"
    "  --reduced          reduced precision, where the generator has it\n"
    "  --help             this text\n";

namespace {

struct TypeRow {
  char const* name;
  txClassID id;
};
constexpr TypeRow kTypes[] = {{"double", txClassDouble}, {"single", txClassSingle},
                              {"int8", txClassInt8},     {"uint8", txClassUint8},
                              {"int16", txClassInt16},   {"uint16", txClassUint16},
                              {"int32", txClassInt32},   {"uint32", txClassUint32}};

txClassID typeNamed(std::string const& text) {
  for (TypeRow const& row : kTypes) {
    if (text == row.name) return row.id;
  }
  throw UsageError(fmt::format(
      "--type takes double, single, int8, uint8, int16, uint16, int32 or uint32, not {}", text));
}

Format formatNamed(std::string const& text) {
  constexpr std::pair<std::string_view, Format> kFormats[] = {
      {"text", Format::text}, {"csv", Format::csv}, {"npy", Format::npy}, {"raw", Format::raw}};
  for (auto const& [name, format] : kFormats) {
    if (text == name) return format;
  }
  throw UsageError(fmt::format("--format takes text, csv, npy or raw, not {}", text));
}

void setRange(StreamOptions& options, std::string const& text) {
  std::size_t const colon = text.find(':');
  try {
    std::size_t used = 0;
    if (colon == std::string::npos) throw std::invalid_argument("");
    std::string const low = text.substr(0, colon);
    std::string const high = text.substr(colon + 1);
    options.low = std::stod(low, &used);
    if (used != low.size()) throw std::invalid_argument("");
    options.high = std::stod(high, &used);
    if (used != high.size()) throw std::invalid_argument("");
  } catch (std::logic_error const&) {
    throw UsageError(fmt::format("--range takes two numbers, for example 1:6, not {}", text));
  }
}

// Type and range follow from the distribution where they were not given, and are checked against it
// where they were.
void complete(StreamOptions& options, bool typeGiven, bool rangeGiven) {
  bool const integers = options.distribution == Distribution::integers;
  if (integers && !typeGiven) options.type = txClassUint32;
  if (integers != language::isIntegerClass(options.type)) {
    throw UsageError("--dist and --type do not go together");
  }
  if (rangeGiven && !integers) throw UsageError("--range belongs to --dist integers");
  if (!options.method.empty() && options.distribution != Distribution::normal) {
    throw UsageError("--method belongs to --dist normal");
  }
  if (!integers) return;
  language::visitElementType(options.type, [&]<class T>(T) {
    double const lowest = static_cast<double>(std::numeric_limits<T>::lowest());
    double const highest = static_cast<double>(std::numeric_limits<T>::max());
    if (!rangeGiven) {
      options.low = lowest;
      options.high = highest;
    }
    bool const whole =
        options.low == std::floor(options.low) && options.high == std::floor(options.high);
    if (!(options.low >= lowest && options.high <= highest && options.low <= options.high &&
          whole)) {
      throw UsageError("--range takes whole numbers that the class holds, the lower one first");
    }
  });
}

}  // namespace

StreamOptions parseStreamOptions(std::vector<std::string> const& words) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  StreamOptions options;
  bool typeGiven = false;
  bool rangeGiven = false;
  bool raw = false;
  bool formatGiven = false;
  using Text = std::string const&;
  auto const number = [](char const* name, auto& target, std::uint64_t low, std::uint64_t high) {
    return [=, &target](Text v) {
      target =
          static_cast<std::remove_reference_t<decltype(target)>>(wholeNumber(name, v, low, high));
    };
  };
  Option const rows[] = {{"--generator", "", [&](Text v) { options.generator = v; }},
                         {"--seed", "", number("--seed", options.seed, 0, 0xFFFFFFFFu)},
                         {"--streams", "", number("--streams", options.streams, 1, kMost)},
                         {"--stream", "", number("--stream", options.stream, 1, kMost)},
                         {"--substream", "", number("--substream", options.substream, 1, kMost)},
                         {"--method", "", [&](Text v) { options.method = v; }},
                         {"--type", "",
                          [&](Text v) {
                            options.type = typeNamed(v);
                            typeGiven = true;
                          }},
                         {"--range", "",
                          [&](Text v) {
                            setRange(options, v);
                            rangeGiven = true;
                          }},
                         {"--count", "",
                          [&](Text v) {
                            options.count = v == "endless"
                                                ? StreamOptions::kEndless
                                                : wholeNumber("--count", v, 0, kMost - 1);
                          }},
                         {"--dist", "",
                          [&](Text v) {
                            if (v == "uniform" || v == "single") {
                              options.distribution = Distribution::uniform;
                              if (v == "single") options.type = txClassSingle;
                            } else if (v == "normal") {
                              options.distribution = Distribution::normal;
                            } else if (v == "integers") {
                              options.distribution = Distribution::integers;
                            } else {
                              throw UsageError(fmt::format(
                                  "--dist takes uniform, single, normal or integers, not {}", v));
                            }
                          }},
                         {"--format", "",
                          [&](Text v) {
                            options.format = formatNamed(v);
                            formatGiven = true;
                          }},
                         {"--raw", "", &raw},
                         {"--antithetic", "", &options.antithetic},
                         {"--reduced", "", &options.reducedPrecision},
                         {"--help", "-h", &options.help}};
  std::vector<std::string> const others = readOptions("tvrng stream", words, rows);
  if (options.help) return options;
  if (!others.empty()) {
    throw UsageError(fmt::format("tvrng stream takes options only, not {}", others.front()));
  }
  complete(options, typeGiven, rangeGiven);
  if (raw && formatGiven && options.format != Format::raw) {
    throw UsageError("--raw is a format, too: name one of them");
  }
  if (raw) options.format = Format::raw;
  if (options.format == Format::npy && options.count == StreamOptions::kEndless) {
    throw UsageError("--format npy tells how many values come: it needs --count");
  }
  return options;
}

}  // namespace shell

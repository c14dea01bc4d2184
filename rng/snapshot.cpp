#include "rng/snapshot.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>

#include "errors/keys.h"
#include "plugin_rng/legacy_plugin.h"
#include "plugin_rng/own_plugin.h"
#include "rng/element_bits.h"
#include "rng/generator_names.h"
#include "rng/mr_functions.h"
#include "rng/state_components.h"
#include "rng/stream_factory.h"

namespace keys = TALVOR::RandStream::snapshot;

namespace {

constexpr std::string_view kMagic = "tvmathrng-snapshot ";
constexpr std::string_view kVersion = "1";
constexpr std::string_view kChecksumLine = "\ncrc32 ";
constexpr std::size_t kLineBytes = 32;  // of elements in a line of the state

// CRC-32 as of gzip and zlib: polynomial 0x04C11DB7 reflected, all ones before and after.
std::uint32_t crc32(std::string_view text) {
  static constexpr auto kTable = [] {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < 256; ++i) {
      std::uint32_t r = i;
      for (int bit = 0; bit < 8; ++bit) r = r % 2 != 0 ? (r >> 1) ^ 0xEDB8'8320 : r >> 1;
      table[i] = r;
    }
    return table;
  }();
  std::uint32_t crc = ~std::uint32_t{0};
  for (char const c : text) crc = kTable[(crc ^ static_cast<unsigned char>(c)) & 255] ^ (crc >> 8);
  return ~crc;
}

std::string toHex(std::uint64_t value, std::size_t bytes) {
  std::string text(2 * bytes, '0');
  for (std::size_t i = text.size(); value != 0; value >>= 4)
    text[--i] = "0123456789abcdef"[value & 15];
  return text;
}

// All of `text` as a number; nothing when it is none or too large for T.
template <class T>
std::optional<T> toNumber(std::string_view text, int base = 10) {
  T value{};
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// A number of exactly `bytes` bytes in hexadecimal digits.
std::optional<std::uint64_t> fromHex(std::string_view text, std::size_t bytes) {
  return text.size() == 2 * bytes ? toNumber<std::uint64_t>(text, 16) : std::nullopt;
}

// The lines of a snapshot whose version and checksum fit, from the second on.
class Lines {
 public:
  explicit Lines(std::string_view text) {
    if (!text.starts_with(kMagic)) errors::raise(keys::NotASnapshot());
    std::string_view const version = text.substr(kMagic.size(), text.find('\n') - kMagic.size());
    if (!toNumber<std::uint64_t>(version)) errors::raise(keys::NotASnapshot());
    if (version != kVersion) errors::raise(keys::OtherVersion(std::string(version)));

    std::size_t const last = text.rfind(kChecksumLine);
    if (last == std::string_view::npos) errors::raise(keys::Truncated());
    std::string_view told = text.substr(last + kChecksumLine.size());
    // White space may have gathered behind the text.
    told = told.substr(0, told.find_last_not_of(" \r\n") + 1);
    if (told.size() < 2 * sizeof(std::uint32_t)) errors::raise(keys::Truncated());
    std::string const computed = toHex(crc32(text.substr(0, last + 1)), sizeof(std::uint32_t));
    if (told != computed)
      errors::raise(keys::Damaged(std::string(told.substr(0, kLineBytes)), computed));

    rest_ = text.substr(0, last + 1);
    next();
  }

  // The value of the line "key value" that must come next.
  std::string_view field(std::string_view key) {
    std::string_view const line = next();
    if (!line.starts_with(key) || line.substr(key.size(), 1) != " ") refuse();
    return line.substr(key.size() + 1);
  }
  template <class T>
  T number(std::string_view key) {
    std::optional<T> const value = toNumber<T>(field(key));
    if (!value) refuse();
    return *value;
  }
  // An index, which counts from 1 in the text.
  std::uint64_t index(std::string_view key) {
    std::uint64_t const value = number<std::uint64_t>(key);
    if (value == 0) refuse();
    return value - 1;
  }
  bool truth(std::string_view key) {
    std::string_view const value = field(key);
    if (value != "true" && value != "false") refuse();
    return value == "true";
  }
  std::string_view next() {
    if (rest_.empty()) refuse();
    ++number_;
    line_ = rest_.substr(0, rest_.find('\n'));
    rest_.remove_prefix(line_.size() + 1);
    return line_;
  }
  void end() {
    if (!rest_.empty()) {
      next();
      refuse();
    }
  }

  // Refuses the line that was read last.
  [[noreturn]] void refuse() const {
    errors::raise(keys::InvalidLine(static_cast<double>(number_), std::string(line_)));
  }

 private:
  std::string_view rest_;
  std::string_view line_;
  int number_ = 0;
};

}  // namespace

// What the operations of a stream do not show of it.
class StreamContents {
 public:
  static std::optional<double> pending(randstream const& s) {
    return s.pendingNormalValid_ ? std::optional(s.pendingNormal_) : std::nullopt;
  }
  static void setPending(randstream& s, double value) {
    s.pendingNormal_ = value;
    s.pendingNormalValid_ = true;
  }
  static void takeOver(randstream& s, std::unique_ptr<randstream> other) noexcept {
    s.takeOver(std::move(other));
  }
};

namespace {

// The name that a snapshot has for a generator.
std::string snapshotName(randstream const& stream) {
  tfl_rng::Generator const* const generator = rng::generatorNamed(stream.generatorType());
  return generator ? generator->name : stream.generatorType();
}

void appendComponent(std::string& text, StateClass const& elementClass, std::size_t length,
                     std::byte const* elements) {
  text.append("component ").append(elementClass.name).append(" ");
  text += std::to_string(length);
  std::size_t const perLine = kLineBytes / elementClass.bytes;
  for (std::size_t i = 0; i < length; ++i) {
    text += i % perLine == 0 ? '\n' : ' ';
    text += toHex(element_bits::load(elements + i * elementClass.bytes, elementClass.bytes),
                  elementClass.bytes);
  }
  text += '\n';
}

void readComponent(Lines& lines, StateClass const& elementClass, std::size_t length,
                   std::byte* elements) {
  std::string const header =
      std::string(elementClass.name).append(" ").append(std::to_string(length));
  if (lines.field("component") != header) lines.refuse();
  std::size_t const perLine = kLineBytes / elementClass.bytes;
  for (std::size_t i = 0; i < length;) {
    std::string_view line = lines.next();
    for (std::size_t const end = std::min(length, i + perLine); i < end; ++i) {
      std::size_t const size = std::min(line.size(), 2 * elementClass.bytes);
      auto const bits = fromHex(line.substr(0, size), elementClass.bytes);
      if (!bits) lines.refuse();
      element_bits::store(elements + i * elementClass.bytes, elementClass.bytes, *bits);
      line.remove_prefix(size);
      if (i + 1 == end ? !line.empty() : !line.starts_with(' ')) lines.refuse();
      if (!line.empty()) line.remove_prefix(1);
    }
  }
}

std::unique_ptr<randstream> newStream(std::string const& generator, std::uint32_t seed,
                                      std::uint64_t numStreams, std::uint64_t streamIndex) {
  using plugin_rng::legacy_plugin;
  if (generator == legacy_plugin::kType)
    return streamOver(legacy_plugin::kType, seed, PluginOwner(new plugin_rng::Own<legacy_plugin>),
                      numStreams, streamIndex);
  return std::unique_ptr<randstream>(
      mrCreateRNGStream(generator.c_str(), numStreams, streamIndex, seed, nullptr, 0));
}

// The stream of a snapshot, of which the generator's name has been read.
std::unique_ptr<randstream> readStream(Lines& lines, std::string const& generator) {
  auto const seed = lines.number<std::uint32_t>("seed");
  auto const numStreams = lines.number<std::uint64_t>("streams");
  std::uint64_t const streamIndex = lines.index("stream");
  std::unique_ptr<randstream> stream = newStream(generator, seed, numStreams, streamIndex);

  stream->setSubstream(lines.index("substream"));
  stream->setAntithetic(lines.truth("antithetic"));
  // The legacy generators refuse to be told what they do anyway.
  if (bool const full = lines.truth("full-precision"); full != stream->fullPrecision())
    stream->setFullPrecision(full);
  std::string const normals(lines.field("normals"));
  std::string_view const pending = lines.field("pending");
  if (pending != "none") {
    auto const bits = fromHex(pending, sizeof(double));
    double const normal = std::bit_cast<double>(bits.value_or(0));
    if (!bits || !std::isfinite(normal)) lines.refuse();
    StreamContents::setPending(*stream, normal);
  }

  StateComponents components(*stream);
  if (lines.number<std::uint64_t>("components") != components.count()) lines.refuse();
  void* const* const pieces = components.allocate();
  for (std::size_t i = 0; i < components.count(); ++i)
    readComponent(lines, components.elementClass(i), components.length(i),
                  static_cast<std::byte*>(pieces[i]));
  lines.end();
  stream->setStateComponents(components.count(), pieces);
  // After the state, which decides what the legacy generators accept.
  if (normals != stream->getRandnAlg()) stream->setRandnAlg(normals.c_str());
  return stream;
}

}  // namespace

std::string takeSnapshot(randstream const& stream) {
  StateComponents components(stream);
  void* const* const pieces = components.fetch(stream);

  auto const truth = [](bool on) { return on ? "true" : "false"; };
  std::optional<double> const pending = StreamContents::pending(stream);
  std::string text;
  auto const line = [&](std::string_view key, std::string_view value) {
    text.append(key).append(" ").append(value).append("\n");
  };
  text.append(kMagic).append(kVersion).append("\n");
  line("generator", snapshotName(stream));
  line("seed", std::to_string(stream.seed()));
  line("streams", std::to_string(stream.numStreams()));
  line("stream", std::to_string(stream.streamIndex() + 1));
  line("substream", std::to_string(stream.getSubstream() + 1));
  line("antithetic", truth(stream.antithetic()));
  line("full-precision", truth(stream.fullPrecision()));
  line("normals", stream.getRandnAlg());
  line("pending",
       pending ? toHex(std::bit_cast<std::uint64_t>(*pending), sizeof *pending) : "none");
  line("components", std::to_string(components.count()));
  for (std::size_t i = 0; i < components.count(); ++i)
    appendComponent(text, components.elementClass(i), components.length(i),
                    static_cast<std::byte const*>(pieces[i]));
  std::string const checksum = toHex(crc32(text), sizeof(std::uint32_t));
  return text.append(kChecksumLine.substr(1)).append(checksum);
}

void restoreSnapshot(randstream& stream, std::string_view text) {
  Lines lines(text);
  std::string const generator(lines.field("generator"));
  if (std::string const own = snapshotName(stream); generator != own)
    errors::raise(keys::OtherGenerator(generator, own));
  StreamContents::takeOver(stream, readStream(lines, generator));
}

randstream* createFromSnapshot(std::string_view text) {
  Lines lines(text);
  std::string const generator(lines.field("generator"));
  return readStream(lines, generator).release();
}

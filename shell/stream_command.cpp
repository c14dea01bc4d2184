#include "shell/stream_command.h"

#include <fmt/compile.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <type_traits>

#include "embedded_host/messages.h"
#include "host/allocator.h"
#include "host/except.h"
#include "language/values.h"
#include "rng/create_stream.h"
#include "rng/randstream.h"
#include "shell/error_text.h"
#include "shell/options.h"
#include "shell/progress.h"
#include "shell/stream_options.h"

namespace shell {

namespace {

// Values made at a time: they stay in the second-level cache on their way out.
constexpr std::uint64_t kBlockBytes = std::uint64_t{1} << 18;

std::unique_ptr<randstream> makeStream(StreamOptions const& options) {
  if (options.stream > options.streams)
    embedded_host::raiseHostError("TALVOR:RandStream:create:BadStreamIndex");
  std::unique_ptr<randstream> stream =
      rng::createStream(options.generator, options.seed, options.stream - 1, options.streams);
  if (options.reducedPrecision) stream->setFullPrecision(false);
  if (options.antithetic) stream->setAntithetic(true);
  if (!options.method.empty()) stream->setRandnAlg(options.method.c_str());
  if (options.substream != 1) stream->setSubstream(options.substream - 1);
  return stream;
}

bool isBinary(Format format) { return format == Format::npy || format == Format::raw; }

template <class T>
void fill(randstream& stream, StreamOptions const& options, T* out, std::uint64_t n) {
  if constexpr (std::is_floating_point_v<T>) {
    options.distribution == Distribution::normal ? stream.randnFcn(out, n, false)
                                                 : stream.randuFcn(out, n);
  } else {
    stream.randiFcn(options.low, options.high, out, n);
  }
}

// Returns false when nobody reads any more.
bool writeAll(void const* data, std::size_t bytes) {
  auto const* at = static_cast<char const*>(data);
  while (bytes > 0) {
    ssize_t const written = ::write(STDOUT_FILENO, at, bytes);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0 && errno == EPIPE) return false;
    if (written < 0) throw std::runtime_error(std::string("cannot write: ") + std::strerror(errno));
    at += written;
    bytes -= static_cast<std::size_t>(written);
  }
  return true;
}

template <class T>
void toLittleEndian(T* values, std::uint64_t n) {
  if constexpr (std::endian::native == std::endian::big && sizeof(T) > 1) {
    auto* bytes = reinterpret_cast<unsigned char*>(values);
    for (std::uint64_t i = 0; i < n; ++i)
      std::reverse(bytes + i * sizeof(T), bytes + (i + 1) * sizeof(T));
  }
}

// The shortest text that reads back as the same value, a line each.
template <class T>
void appendLines(fmt::memory_buffer& text, T const* values, std::uint64_t n) {
  for (std::uint64_t i = 0; i < n; ++i) {
    fmt::format_to(std::back_inserter(text), FMT_COMPILE("{}\n"), +values[i]);
  }
}

// The header of a file for NumPy: format 1.0, one dimension, 64 bytes or a multiple of it.
template <class T>
std::string npyHeader(std::uint64_t count) {
  char const kind = std::is_floating_point_v<T> ? 'f' : std::is_signed_v<T> ? 'i' : 'u';
  std::string header =
      fmt::format("{{'descr': '{}{}{}', 'fortran_order': False, 'shape': ({},), }}",
                  sizeof(T) == 1 ? '|' : '<', kind, sizeof(T), count);
  constexpr std::size_t kBefore = 10;  // magic, version and length
  header.append(63 - (kBefore + header.size()) % 64, ' ') += '\n';
  std::string const start = {'\x93', 'N', 'U', 'M', 'P', 'Y', '\1', '\0'};
  return start + static_cast<char>(header.size() & 0xFF) + static_cast<char>(header.size() >> 8) +
         header;
}

// What stands before the values.
template <class T>
std::string headOf(StreamOptions const& options) {
  constexpr char const* kNames[] = {"uniform", "normal", "integers"};
  if (options.format == Format::npy) return npyHeader<T>(options.count);
  if (options.format == Format::csv)
    return std::string(kNames[static_cast<int>(options.distribution)]) + '\n';
  return "";
}

template <class T>
void writeValues(randstream& stream, StreamOptions const& options) {
  std::uint64_t const block = kBlockBytes / sizeof(T);
  auto const values = txMakeBuffer<T>(block);
  fmt::memory_buffer text;
  Progress progress(!isatty(STDOUT_FILENO));
  std::uint64_t done = 0;
  bool const binary = isBinary(options.format);
  std::string const head = headOf<T>(options);
  if (!writeAll(head.data(), head.size())) return;
  while (done < options.count) {
    std::uint64_t const n = std::min(block, options.count - done);
    fill(stream, options, values.get(), n);
    bool open = false;
    if (binary) {
      toLittleEndian(values.get(), n);
      open = writeAll(values.get(), n * sizeof(T));
    } else {
      text.clear();
      appendLines(text, values.get(), n);
      open = writeAll(text.data(), text.size());
    }
    if (!open) return;
    done += n;
    if (progress.isDue()) {
      auto const written = static_cast<double>(done);
      progress.draw(
          options.count == StreamOptions::kEndless ? -1
                                                   : written / static_cast<double>(options.count),
          fmt::format("{:.3g} values, {:.3g} a second", written, written / progress.seconds()));
    }
  }
}

void writeStream(StreamOptions const& options) {
  auto const stream = makeStream(options);
  switch (options.type) {
    case txClassSingle:
      return writeValues<float>(*stream, options);
    case txClassInt8:
      return writeValues<signed char>(*stream, options);
    case txClassUint8:
      return writeValues<unsigned char>(*stream, options);
    case txClassInt16:
      return writeValues<short>(*stream, options);
    case txClassUint16:
      return writeValues<unsigned short>(*stream, options);
    case txClassInt32:
      return writeValues<int>(*stream, options);
    case txClassUint32:
      return writeValues<unsigned int>(*stream, options);
    default:
      return writeValues<double>(*stream, options);
  }
}

}  // namespace

int runStreamCommand(std::vector<std::string> const& words) {
  StreamOptions const options = parseStreamOptions(words);
  if (options.help) {
    std::fputs(kStreamUsage, stdout);
    return 0;
  }
  if (isBinary(options.format) && isatty(STDOUT_FILENO)) {
    throw UsageError("formats npy and raw are for files and pipes; a terminal takes text");
  }
  try {
    writeStream(options);
  } catch (foundation::core::except::AnyException const& error) {
    std::fputs(describeError(error).c_str(), stderr);
    return 1;
  }
  return 0;
}

}  // namespace shell

// Snapshots: any text, and texts whose checksum was made to fit, give a stream that draws and whose
// own snapshot leads back to it, or a host error that changes nothing.

#include <boost/crc.hpp>
#include <memory>
#include <string>

#include "embedded_host/vm_context.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/stream_checks.h"
#include "rng/mr_functions.h"
#include "rng/snapshot.h"
#include "runtime/vm.h"

namespace {

std::string withChecksum(std::string body) {
  if (!body.ends_with('\n')) body += '\n';
  boost::crc_32_type crc;
  crc.process_bytes(body.data(), body.size());
  char line[32];
  std::snprintf(line, sizeof line, "crc32 %08x\n", static_cast<unsigned>(crc.checksum()));
  return body + line;
}

// A stream of the generator that the text names, the twister where it names none.
std::unique_ptr<randstream> streamLike(std::string const& text) {
  constexpr std::string_view kLine = "\ngenerator ";
  std::size_t const at = text.find(kLine);
  if (at != std::string::npos) {
    std::size_t const from = at + kLine.size();
    std::string const name = text.substr(from, text.find('\n', from) - from);
    try {
      return std::unique_ptr<randstream>(mrCreateRNGStream(name.c_str(), 1, 0, 5, nullptr, 0));
    } catch (foundation::core::except::AnyException const&) {
    }
  }
  return std::unique_ptr<randstream>(mrCreateRNGStream("mt19937ar", 1, 0, 5, nullptr, 0));
}

void restoreInto(std::string const& text) {
  std::unique_ptr<randstream> const stream = streamLike(text);
  std::string const before = takeSnapshot(*stream);
  try {
    restoreSnapshot(*stream, text);
  } catch (foundation::core::except::AnyException const&) {
    fuzz::check(takeSnapshot(*stream) == before, "a refused snapshot changes nothing");
  }
}

}  // namespace

// The first byte: even, the text as it is; odd, with a checksum behind it.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  if (size == 0) return 0;
  std::string text(reinterpret_cast<char const*>(data) + 1, size - 1);
  if (data[0] % 2 == 1) text = withChecksum(std::move(text));
  runtime::Vm vm;
  embedded_host::EnterVm const inside(vm.context());
  restoreInto(text);
  std::unique_ptr<randstream> stream;
  try {
    stream.reset(createFromSnapshot(text));
  } catch (foundation::core::except::AnyException const& error) {
    fuzz::check(*error.text() != '\0', "errors have a text");
    return 0;
  }
  std::string const own = takeSnapshot(*stream);
  std::unique_ptr<randstream> const copy(createFromSnapshot(own));
  fuzz::check(takeSnapshot(*copy) == own, "a snapshot leads back to its stream");
  constexpr std::size_t kDraws = 101;
  std::vector<double> const drawn = fuzz::drawAll(*stream, kDraws);
  std::vector<double> const again = fuzz::drawAll(*copy, kDraws);
  fuzz::check(fuzz::sameBits(drawn, again), "a snapshot gives the same draws");
  return 0;
}

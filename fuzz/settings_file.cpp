// A user's settings file: any bytes give either the settings or a host error, and a VM with such a
// file draws or says why not. A zero byte, which no settings file has, and a count behind it
// repeat what stands before them, so that short inputs make long and deep files.

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "builtins/builtins.h"
#include "embedded_host/settings.h"
#include "embedded_host/vm_context.h"
#include "fuzz/fuzz_target.h"
#include "host/except.h"
#include "runtime/vm.h"

namespace {

// A file of this process that is gone when the process is.
class ScratchFile {
 public:
  ScratchFile()
      : path_(std::filesystem::temp_directory_path() /
              ("fuzz_settings_" + std::to_string(getpid()) + ".toml")) {}
  ~ScratchFile() { std::filesystem::remove(path_); }
  ScratchFile(ScratchFile const&) = delete;
  ScratchFile& operator=(ScratchFile const&) = delete;

  std::filesystem::path const& fill(std::string const& contents) const {
    std::ofstream(path_, std::ios::binary) << contents;
    return path_;
  }

 private:
  std::filesystem::path path_;
};

std::string expanded(std::string_view input) {
  constexpr std::size_t kMost = 200'000;
  std::string text;
  for (std::size_t zero; (zero = std::min(input.find('\0'), input.size())) + 1 < input.size();) {
    std::size_t const times = 1 + 127 * static_cast<unsigned char>(input[zero + 1]);
    for (std::size_t i = 0; i < times && text.size() < kMost; ++i) text += input.substr(0, zero);
    input.remove_prefix(zero + 2);
  }
  return text.append(input);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  static ScratchFile const file;
  runtime::Vm vm;
  embedded_host::EnterVm const inside(vm.context());
  vm.context().useSettingsFile(file.fill(expanded({reinterpret_cast<char const*>(data), size})));
  try {
    double const x = vm.call("rand")->scalarAsDouble();
    fuzz::check(x > 0 && x < 1, "a uniform lies in (0,1)");
  } catch (foundation::core::except::AnyException const& error) {
    fuzz::check(error.GetID().starts_with("TALVOR:") && *error.text(), "errors have a text");
  }
  return 0;
}

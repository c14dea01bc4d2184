// A user's settings file: any bytes give either the settings or a host error, and a VM with such a
// file draws or says why not.

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

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

  std::filesystem::path const& fill(std::uint8_t const* data, std::size_t size) const {
    std::ofstream(path_, std::ios::binary)
        .write(reinterpret_cast<char const*>(data), static_cast<std::streamsize>(size));
    return path_;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  static ScratchFile const file;
  runtime::Vm vm;
  embedded_host::EnterVm const inside(vm.context());
  vm.context().useSettingsFile(file.fill(data, size));
  try {
    double const x = vm.call("rand")->scalarAsDouble();
    fuzz::check(x > 0 && x < 1, "a uniform lies in (0,1)");
  } catch (foundation::core::except::AnyException const& error) {
    fuzz::check(error.GetID().starts_with("TALVOR:") && *error.text(), "errors have a text");
  }
  return 0;
}

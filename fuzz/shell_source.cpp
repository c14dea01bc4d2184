// Source text of the host language, its results shown as the shell shows them.

#include <sys/time.h>

#include <csignal>
#include <string>

#include "embedded_host/interrupt.h"
#include "embedded_host/vm_context.h"
#include "fuzz/fuzz_target.h"
#include "language/session.h"
#include "runtime/vm.h"
#include "shell/display.h"
#include "shell/error_text.h"
#include "shell/json.h"

namespace {

class ShownAndDropped final : public language::Output {
 public:
  void show(std::string_view name, txArray const& value) override {
    fuzz::check(shell::displayValue(name, value, {}).ends_with('\n'), "a display ends its line");
    (void)shell::toJson(value);
  }
  void print(std::string_view) override {}
  void printValue(txArray const& value) override { (void)shell::displayValue("", value, {}); }
};

// Ends the program in the language, as Ctrl-C does, after a second of work.
class Deadline {
 public:
  Deadline() {
    std::signal(SIGVTALRM, [](int) { embedded_host::requestInterrupt(); });
    // Again and again, since a new run forgets the request.
    itimerval const second{.it_interval = {0, 100'000}, .it_value = {1, 0}};
    setitimer(ITIMER_VIRTUAL, &second, nullptr);
  }
  ~Deadline() {
    itimerval const never{};
    setitimer(ITIMER_VIRTUAL, &never, nullptr);
  }
  Deadline(Deadline const&) = delete;
  Deadline& operator=(Deadline const&) = delete;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  std::string const source(reinterpret_cast<char const*>(data), size);
  // Advancing a generator that cannot jump takes as long as drawing.
  if (source.find("advance") != std::string::npos) return 0;
  runtime::Vm vm;
  embedded_host::EnterVm const inside(vm.context());
  vm.context().useSettingsFile("no-such-file.toml");
  vm.context().setWarningSink([](auto const&, std::string const&) {});
  ShownAndDropped output;
  language::Session session(vm.context(), output);
  Deadline const deadline;
  try {
    session.run(source);
  } catch (language::SourceError const& error) {
    std::string const text = shell::describeError(error, {source}, true);
    fuzz::check(text.find(error.identifier()) != std::string::npos, "errors tell their identifier");
    fuzz::check(error.identifier() != "TALVOR:language:internal", "no internal errors");
  }
  return 0;
}

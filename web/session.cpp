// A session of the shell for a page: the functions that its worker calls. Values, text and errors
// go to standard output and standard error, pictures and pages to files in the current folder.

#include <emscripten.h>
#include <fmt/format.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "embedded_host/dispatcher.h"
#include "host/messages.h"
#include "language/fault.h"
#include "language/values.h"
#include "shell/completion.h"
#include "shell/doctor_command.h"
#include "shell/interpreter.h"
#include "shell/options.h"
#include "shell/report_command.h"

namespace {

using embedded_host::Function;

std::unique_ptr<shell::Interpreter> interpreter;
int drawings = 0;

bool namesFile(int nrhs, txArray const** prhs) {
  return nrhs > 0 && language::isScalarText(*prhs[nrhs - 1]);
}

// In a page a drawing is a picture: histogram(x) draws to a file of its own.
void drawToFiles(char const* name) {
  auto& functions = interpreter->session().vm().functions();
  Function const onTerminal = *functions.find(name);
  functions.add(name, [=](int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
    if (nrhs == 0 || namesFile(nrhs, prhs)) return onTerminal(nlhs, plhs, nrhs, prhs);
    txArrayPtr const file = language::makeText(fmt::format("{}-{}.svg", name, ++drawings));
    std::vector<txArray const*> arguments(prhs, prhs + nrhs);
    arguments.push_back(file.get());
    onTerminal(nlhs, plhs, nrhs + 1, arguments.data());
  });
}

// report NAME, or report('NAME'): the command of the terminal, as a function.
void report(int nlhs, txArrayPtr*, int nrhs, txArray const** prhs) {
  if (nlhs > 0) matrix::detail::error_maxlhs();
  if (nrhs < 1) matrix::detail::error_minrhs();
  if (nrhs > 1) matrix::detail::error_maxrhs();
  std::string const generator = language::textArgument(*prhs[0], 1);
  shell::runReportCommand({"--output", fmt::format("report-{}.html", ++drawings), "--", generator});
}

void doctor(int nlhs, txArrayPtr*, int nrhs, txArray const**) {
  if (nlhs > 0) matrix::detail::error_maxlhs();
  if (nrhs > 0) matrix::detail::error_maxrhs();
  shell::runDoctorCommand({});
}

}  // namespace

extern "C" {

EMSCRIPTEN_KEEPALIVE void tv_session_start() {
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
  interpreter = std::make_unique<shell::Interpreter>(shell::Interpreter::Echo::all);
  for (char const* const name : {"histogram", "chart"}) drawToFiles(name);
  interpreter->session().addCommand("report");
  interpreter->session().vm().functions().add("report", report);
  interpreter->session().vm().functions().add("doctor", doctor);
}

// 0 done, 1 failed, 2 when more lines may complete the source, 3 after exit. `width` in columns.
EMSCRIPTEN_KEEPALIVE int tv_session_run(char const* source, int width) {
  setenv("COLUMNS", std::to_string(width).c_str(), 1);
  interpreter->style().width = width;
  int outcome = 3;
  try {
    outcome = static_cast<int>(interpreter->run(source, "", true));
  } catch (shell::ExitRequest const&) {
  } catch (std::exception const& error) {
    std::fprintf(stderr, "%s\n", error.what());
    outcome = 1;
  }
  std::fflush(stdout);
  return outcome;
}

// The line's completions: where the word begins, in bytes, and the words, a line each.
EMSCRIPTEN_KEEPALIVE char const* tv_session_complete(char const* line) {
  static std::string text;
  shell::Completion const found = shell::complete(line, interpreter->session());
  text = std::to_string(found.start);
  for (std::string const& word : found.words) text += '\n' + word;
  return text.c_str();
}
}

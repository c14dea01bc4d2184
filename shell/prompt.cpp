#include "shell/prompt.h"

#include <histedit.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "shell/completion.h"
#include "shell/terminal.h"

namespace shell {

namespace {

constexpr int kHistoryLines = 2000;

// While a statement runs, Ctrl-C ends it; while a line is edited, it is a key like any other.
extern "C" void onInterrupt(int) { language::requestInterrupt(); }

std::filesystem::path historyFile() {
  char const* const state = std::getenv("XDG_STATE_HOME");
  if (state && *state) return std::filesystem::path(state) / "tvrng" / "history";
  char const* const home = std::getenv("HOME");
  if (!home || !*home) return {};
  return std::filesystem::path(home) / ".local" / "state" / "tvrng" / "history";
}

class LineEditor {
 public:
  explicit LineEditor(language::Session const& session)
      : session_(session),
        edit_(el_init("tvrng", stdin, stdout, stderr)),
        history_(history_init()) {
    HistEvent event;
    history(history_.get(), &event, H_SETSIZE, kHistoryLines);
    history(history_.get(), &event, H_SETUNIQUE, 1);
    file_ = historyFile();
    if (!file_.empty()) history(history_.get(), &event, H_LOAD, file_.c_str());
    EditLine* const edit = edit_.get();
    el_set(edit, EL_CLIENTDATA, this);
    el_set(edit, EL_PROMPT, &LineEditor::prompt);
    el_set(edit, EL_EDITOR, "emacs");
    el_set(edit, EL_HIST, ::history, history_.get());
    el_set(edit, EL_ADDFN, "tv-complete", "completes names", &LineEditor::onTab);
    el_set(edit, EL_BIND, "^I", "tv-complete", nullptr);
    el_set(edit, EL_ADDFN, "tv-cancel", "drops the input", &LineEditor::onCancel);
    el_set(edit, EL_BIND, "^C", "tv-cancel", nullptr);
    el_set(edit, EL_BIND, "^R", "em-inc-search-prev", nullptr);
    el_set(edit, EL_SETTY, "-d", "-isig", nullptr);
    el_source(edit, nullptr);  // the user's own key bindings
  }

  ~LineEditor() {
    if (file_.empty()) return;
    std::error_code ignored;  // a history that cannot be kept is no reason to complain
    std::filesystem::create_directories(file_.parent_path(), ignored);
    HistEvent event;
    history(history_.get(), &event, H_SAVE, file_.c_str());
  }
  LineEditor(LineEditor const&) = delete;
  LineEditor& operator=(LineEditor const&) = delete;

  enum class Input { line, cancelled, end };

  Input read(bool continues, std::string& line) {
    prompt_ = continues ? "  " : "> ";
    cancelled_ = false;
    int count = 0;
    char const* const text = el_gets(edit_.get(), &count);
    if (cancelled_) return Input::cancelled;
    if (!text || count <= 0) return Input::end;
    line.assign(text, static_cast<std::size_t>(count));
    return Input::line;
  }

  void remember(std::string const& source) {
    if (source.find_first_not_of(" \t\n") == std::string::npos) return;
    HistEvent event;
    history(history_.get(), &event, H_ENTER, source.c_str());
  }

 private:
  static LineEditor& self(EditLine* edit) {
    void* data = nullptr;
    el_get(edit, EL_CLIENTDATA, &data);
    return *static_cast<LineEditor*>(data);
  }

  static char* prompt(EditLine* edit) { return self(edit).prompt_.data(); }

  static unsigned char onCancel(EditLine* edit, int) {
    self(edit).cancelled_ = true;
    std::fputs("^C\n", stdout);
    std::fflush(stdout);
    LineInfo const* const line = el_line(edit);
    el_cursor(edit, static_cast<int>(line->lastchar - line->cursor));
    el_deletestr(edit, static_cast<int>(line->lastchar - line->buffer));
    return CC_EOF;
  }

  static unsigned char onTab(EditLine* edit, int) {
    LineInfo const* const line = el_line(edit);
    std::string_view const before(line->buffer,
                                  static_cast<std::size_t>(line->cursor - line->buffer));
    if (before.find_first_not_of(" \t") == std::string_view::npos) {
      el_insertstr(edit, "  ");
      return CC_REFRESH;
    }
    Completion const found = complete(before, self(edit).session_);
    if (found.words.empty()) return CC_REFRESH_BEEP;
    std::string const common = commonPrefix(found.words);
    int const typed = static_cast<int>(before.size() - found.start);
    bool const longer = static_cast<int>(common.size()) > typed;
    if (longer || (found.words.size() == 1 && common != before.substr(found.start))) {
      el_deletestr(edit, typed);
      el_insertstr(edit, common.c_str());
      return CC_REFRESH;
    }
    if (found.words.size() == 1) return CC_REFRESH;
    std::size_t const width = static_cast<std::size_t>(terminalWidth(STDOUT_FILENO));
    std::size_t column = 0;
    std::fputc('\n', stdout);
    for (std::string const& word : found.words) {
      if (column > 0 && column + 2 + word.size() >= width) {
        std::fputc('\n', stdout);
        column = 0;
      }
      std::fprintf(stdout, "  %s", word.c_str());
      column += 2 + word.size();
    }
    std::fputc('\n', stdout);
    std::fflush(stdout);
    return CC_REDISPLAY;
  }

  struct EndEdit {
    void operator()(EditLine* edit) const { el_end(edit); }
  };
  struct EndHistory {
    void operator()(History* history) const { history_end(history); }
  };

  language::Session const& session_;
  std::unique_ptr<EditLine, EndEdit> edit_;
  std::unique_ptr<History, EndHistory> history_;
  std::filesystem::path file_;
  std::string prompt_;
  bool cancelled_ = false;
};

// `help rand` and `format long`, the two commands that are typed most, need no parentheses.
std::string expandCommand(std::string const& line, language::Session const& session) {
  for (char const* const command : {"help", "format"}) {
    std::string const lead = std::string(command) + ' ';
    if (!line.starts_with(lead) || session.variable(command)) continue;
    std::size_t const from = line.find_first_not_of(' ', lead.size());
    std::size_t const to = line.find_last_not_of(" \n;");
    if (from == std::string::npos || to < from) return std::string(command) + '\n';
    std::string const word = line.substr(from, to - from + 1);
    if (word.find_first_of(" '\"(=") != std::string::npos) continue;
    return std::string(command) + "('" + word + "')\n";
  }
  return line;
}

}  // namespace

int runPrompt(Interpreter& interpreter, bool greet) {
  struct sigaction action {};
  action.sa_handler = onInterrupt;
  action.sa_flags = SA_RESTART;
  sigaction(SIGINT, &action, nullptr);
  if (greet) {
    interpreter.write("tvrng " TV_VERSION
                      ": random numbers at a prompt. Try rand(2,3); help lists "
                      "more; Ctrl-D leaves.\n");
  }
  LineEditor editor(interpreter.session());
  std::string source;
  for (;;) {
    std::fflush(stdout);
    std::string line;
    auto const input = editor.read(!source.empty(), line);
    if (input == LineEditor::Input::end) {
      std::fputc('\n', stdout);
      return 0;
    }
    if (input == LineEditor::Input::cancelled) {
      source.clear();
      continue;
    }
    source += source.empty() ? expandCommand(line, interpreter.session()) : line;
    interpreter.style().width = terminalWidth(STDOUT_FILENO);
    try {
      if (interpreter.run(source, "", true) == Interpreter::Outcome::incomplete) continue;
    } catch (ExitRequest const& request) {
      editor.remember(source);
      return request.status;
    }
    editor.remember(source);
    source.clear();
  }
}

}  // namespace shell

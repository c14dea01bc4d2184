#include "shell/line_editor.h"

#include <histedit.h>
#include <locale.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "shell/completion.h"
#include "shell/history.h"
#include "shell/terminal.h"

namespace shell {

namespace {

std::filesystem::path historyFile() {
  char const* const state = std::getenv("XDG_STATE_HOME");
  if (state && *state) return std::filesystem::path(state) / "tvrng" / "history";
  char const* const home = std::getenv("HOME");
  if (!home || !*home) return {};
  return std::filesystem::path(home) / ".local" / "state" / "tvrng" / "history";
}

// Characters are those of UTF-8 for the editor, whatever the locale's name says: the language's
// text is UTF-8. Everything else knows bytes, and is left in the locale it is in.
class InUtf8 {
 public:
  InUtf8() : before_(uselocale(utf8())) {}
  ~InUtf8() { uselocale(before_); }
  InUtf8(InUtf8 const&) = delete;
  InUtf8& operator=(InUtf8 const&) = delete;

 private:
  // Null, which changes nothing, where there is no such locale.
  static locale_t utf8() {
    static locale_t const made = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    static locale_t const found = made ? made : newlocale(LC_CTYPE_MASK, "", nullptr);
    return found;
  }

  locale_t before_;
};

class LineEditor final : public LineSource {
 public:
  explicit LineEditor(language::Session const& session)
      : session_(session), edit_(el_init("tvrng", stdin, stdout, stderr)), history_(historyFile()) {
    EditLine* const edit = edit_.get();
    InUtf8 const inUtf8;  // which keys are letters is asked here
    el_set(edit, EL_CLIENTDATA, this);
    el_set(edit, EL_PROMPT, &LineEditor::prompt);
    el_set(edit, EL_EDITOR, "emacs");
    el_set(edit, EL_HIST, ::history, history_.inMemory());
    el_set(edit, EL_ADDFN, "tv-complete", "completes names", &LineEditor::onTab);
    el_set(edit, EL_BIND, "^I", "tv-complete", nullptr);
    el_set(edit, EL_ADDFN, "tv-cancel", "drops the input", &LineEditor::onCancel);
    el_set(edit, EL_BIND, "^C", "tv-cancel", nullptr);
    el_set(edit, EL_BIND, "^R", "em-inc-search-prev", nullptr);
    el_set(edit, EL_SETTY, "-d", "-isig", nullptr);
    el_source(edit, nullptr);  // the user's own key bindings
  }

  Input read(bool continues, std::string& line) override {
    prompt_ = promptText(continues);
    cancelled_ = false;
    InUtf8 const inUtf8;
    int count = 0;
    char const* const text = el_gets(edit_.get(), &count);
    if (cancelled_) return Input::cancelled;
    if (!text || count <= 0) return Input::end;
    line.assign(text, static_cast<std::size_t>(count));
    return Input::line;
  }

  void remember(std::string const& source) override {
    if (source.find_first_not_of(" \t\n") == std::string::npos) return;
    history_.add(source);
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
    LineInfoW const* const line = el_wline(edit);
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

  language::Session const& session_;
  std::unique_ptr<EditLine, EndEdit> edit_;
  StatementHistory history_;
  std::string prompt_;
  bool cancelled_ = false;
};

}  // namespace

std::unique_ptr<LineSource> makeLineEditor(language::Session const& session) {
  return std::make_unique<LineEditor>(session);
}

}  // namespace shell

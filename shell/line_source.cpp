#include "shell/line_source.h"

#include <unistd.h>

#include <cstdio>

#ifndef TV_NO_LINE_EDITOR
#include "shell/line_editor.h"
#endif

namespace shell {

char const* promptText(bool continues) { return continues ? ". " : "> "; }

namespace {

class PipeReader final : public LineSource {
 public:
  Input read(bool continues, std::string& line) override {
    line.clear();
    for (int c = std::getchar(); c != EOF; c = std::getchar()) {
      line += static_cast<char>(c);
      if (c == '\n') break;
    }
    if (line.empty()) return Input::end;
    if (line.back() != '\n') line += '\n';
    std::printf("%s%s", promptText(continues), line.c_str());
    return Input::line;
  }
  void remember(std::string const&) override {}
};

}  // namespace

std::unique_ptr<LineSource> makeLineSource([[maybe_unused]] language::Session const& session) {
#ifndef TV_NO_LINE_EDITOR
  if (isatty(STDIN_FILENO)) return makeLineEditor(session);
#endif
  return std::make_unique<PipeReader>();
}

}  // namespace shell

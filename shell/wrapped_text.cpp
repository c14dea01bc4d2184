#include "shell/wrapped_text.h"

#include <algorithm>

#include "shell/terminal.h"

namespace shell {

std::string wrapped(std::string_view head, std::string_view text, std::size_t indent,
                    std::size_t width) {
  std::string out(head);
  std::size_t column = displayWidth(head);
  bool fresh = true;  // nothing of the text on this line yet
  std::size_t at = 0;
  while (at < text.size()) {
    std::size_t end = std::min(text.find(' ', at), text.size());
    end = std::min(end, at + width - indent);  // a word longer than the line is cut
    while (end < text.size() && continues(text[end])) ++end;
    std::string_view const word = text.substr(at, end - at);
    if (!fresh && column + 1 + displayWidth(word) > width) {
      out += '\n' + std::string(indent, ' ');
      column = indent;
      fresh = true;
    }
    if (!fresh) {
      out += ' ';
      ++column;
    }
    fresh = false;
    out += word;
    column += displayWidth(word);
    at = end < text.size() && text[end] == ' ' ? end + 1 : end;
  }
  return out + '\n';
}

}  // namespace shell

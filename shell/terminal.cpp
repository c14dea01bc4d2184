#include "shell/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace shell {

namespace {
constexpr int kNarrowest = 20;
constexpr int kWidest = 1000;
}  // namespace

int terminalWidth(int descriptor) {
  winsize size{};
  int width = 0;
  if (isatty(descriptor) && ioctl(descriptor, TIOCGWINSZ, &size) == 0) width = size.ws_col;
  char const* const told = std::getenv("COLUMNS");
  if (width == 0 && told) width = std::atoi(told);
  return width == 0 ? 80 : std::clamp(width, kNarrowest, kWidest);
}

std::size_t displayWidth(std::string_view utf8) {
  return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

}  // namespace shell

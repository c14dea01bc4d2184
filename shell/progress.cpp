#include "shell/progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "shell/terminal.h"

namespace shell {

namespace {

constexpr std::chrono::milliseconds kInterval{250};
constexpr std::size_t kNarrowestBar = 10;

std::string timeText(double seconds) {
  if (seconds < 100) return fmt::format("{:.0f} s", seconds);
  if (seconds < 6000) return fmt::format("{:.0f} min", seconds / 60);
  if (seconds < 360000) return fmt::format("{:.0f} h", seconds / 3600);
  return fmt::format("{:.3g} days", seconds / 86400);
}

}  // namespace

Progress::Progress(bool wanted) : shown_(wanted && isatty(STDERR_FILENO)) { next_ += kInterval; }

Progress::~Progress() {
  if (drawn_) std::fputs("\r\x1b[K", stderr);
}

bool Progress::isDue() const { return shown_ && Clock::now() >= next_; }

double Progress::seconds() const {
  return std::chrono::duration<double>(Clock::now() - start_).count();
}

void Progress::draw(double share, std::string_view text) {
  if (!isDue()) return;
  next_ = Clock::now() + kInterval;
  drawn_ = true;
  std::string line(text);
  auto const width = static_cast<std::size_t>(terminalWidth(STDERR_FILENO) - 1);
  if (share >= 0) {
    std::string const left =
        share > 0 ? fmt::format("  {} left", timeText(seconds() / share - seconds())) : "";
    std::string const percent = fmt::format("{:3.0f} %  ", share * 100);
    std::size_t const taken = displayWidth(line) + left.size() + percent.size() + 3;
    std::size_t const bar = taken + kNarrowestBar > width ? 0 : std::min(width - taken, width / 2);
    auto const full = static_cast<std::size_t>(share * static_cast<double>(bar));
    line = percent + line + left;
    if (bar > 0) line = "[" + std::string(full, '#') + std::string(bar - full, ' ') + "] " + line;
  }
  std::fprintf(stderr, "\r%s\x1b[K", line.substr(0, width).c_str());
  std::fflush(stderr);
}

}  // namespace shell

#include "shell/progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>

#include "shell/stream_options.h"
#include "shell/terminal.h"

namespace shell {

namespace {
constexpr std::chrono::milliseconds kInterval{250};
}

Progress::Progress(std::uint64_t total)
    : shown_(isatty(STDERR_FILENO) && !isatty(STDOUT_FILENO)), total_(total) {
  next_ += kInterval;  // what is quickly done needs no bar
}

Progress::~Progress() {
  if (drawn_) std::fputs("\r\x1b[K", stderr);
}

void Progress::update(std::uint64_t done) {
  if (!shown_) return;
  auto const now = Clock::now();
  if (now < next_) return;
  next_ = now + kInterval;
  drawn_ = true;
  double const seconds = std::chrono::duration<double>(now - start_).count();
  double const rate = static_cast<double>(done) / seconds;
  std::string line = fmt::format("{:.3g} values, {:.3g} a second", static_cast<double>(done), rate);
  if (total_ != StreamOptions::kEndless) {
    double const share = static_cast<double>(done) / static_cast<double>(total_);
    int const room = terminalWidth(STDERR_FILENO) - static_cast<int>(line.size()) - 22;
    std::string const left = fmt::format("  {:.0f} s left", seconds / share - seconds);
    std::size_t const bar = room > 10 ? static_cast<std::size_t>(room) : 0;
    std::size_t const full = static_cast<std::size_t>(share * static_cast<double>(bar));
    line = (bar ? "[" + std::string(full, '#') + std::string(bar - full, ' ') + "] " : "") +
           fmt::format("{:3.0f} %  ", share * 100) + line + left;
  }
  std::fprintf(stderr, "\r%s\x1b[K",
               line.substr(0, static_cast<std::size_t>(terminalWidth(STDERR_FILENO) - 1)).c_str());
}

}  // namespace shell

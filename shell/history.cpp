#include "shell/history.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

namespace shell {

namespace {

constexpr int kStatements = 2000;  // in memory
// When the file holds more, it is cut to those in memory.
constexpr int kMostInFile = 2 * kStatements;

// The first line of a history, by which the line editor's library knows its own.
constexpr char kFirstLine[] = "_HiStOrY_V2_\n";

// The file for as long as this lives, other prompts waiting; false for what is no regular file.
class Locked {
 public:
  Locked(std::filesystem::path const& file, int flags)
      // Not to wait for the other end of a pipe.
      : number_(open(file.c_str(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0600)) {
    held_ = number_ >= 0 && fstat(number_, &status_) == 0 && S_ISREG(status_.st_mode) &&
            flock(number_, LOCK_EX) == 0 && fstat(number_, &status_) == 0;
  }
  ~Locked() {
    if (number_ >= 0) close(number_);
  }
  Locked(Locked const&) = delete;
  Locked& operator=(Locked const&) = delete;

  explicit operator bool() const { return held_; }
  bool isEmpty() const { return status_.st_size == 0; }
  void write(std::string const& text) const {
    // Half a line that a full disk leaves is no worse than none.
    [[maybe_unused]] auto const written = ::write(number_, text.data(), text.size());
  }

 private:
  int number_;
  bool held_ = false;
  struct stat status_ {};
};

// One line of the file: bytes that are no ASCII letters or signs are octal numbers.
std::string encoded(std::string const& statement) {
  std::string line;
  for (char const c : statement) {
    auto const byte = static_cast<unsigned char>(c);
    bool const plain = byte > 0x20 && byte < 0x7F && c != '\\';
    line += plain ? std::string(1, c) : fmt::format("\\{:03o}", byte);
  }
  return line + '\n';
}

}  // namespace

StatementHistory::StatementHistory(std::filesystem::path file)
    : file_(std::move(file)), memory_(history_init()) {
  HistEvent event;
  history(memory_.get(), &event, H_SETSIZE, kStatements);
  history(memory_.get(), &event, H_SETUNIQUE, 1);
  if (!file_.empty()) load();
  if (history(memory_.get(), &event, H_FIRST) != -1) last_ = event.str;
}

void StatementHistory::load() {
  Locked const locked(file_, O_RDONLY);
  if (!locked) return;
  HistEvent event;
  int const count = history(memory_.get(), &event, H_LOAD, file_.c_str());
  if (count > kMostInFile) history(memory_.get(), &event, H_SAVE, file_.c_str());
}

void StatementHistory::add(std::string const& statement) {
  if (statement == last_) return;
  last_ = statement;
  HistEvent event;
  history(memory_.get(), &event, H_ENTER, statement.c_str());
  if (!file_.empty()) append(statement);
}

void StatementHistory::append(std::string const& statement) const {
  std::error_code ignored;
  std::filesystem::create_directories(file_.parent_path(), ignored);
  Locked const locked(file_, O_WRONLY | O_APPEND | O_CREAT);
  if (locked) locked.write((locked.isEmpty() ? kFirstLine : "") + encoded(statement));
}

}  // namespace shell

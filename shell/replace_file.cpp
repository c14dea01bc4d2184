#include "shell/replace_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace shell {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(std::string const& file, int reason = errno) {
  throw std::system_error(reason, std::generic_category(), "cannot write " + file);
}

class Descriptor {
 public:
  Descriptor(std::string const& path, int flags)
      : number_(open(path.c_str(), flags | O_WRONLY | O_CLOEXEC, 0666)) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(Descriptor const&) = delete;
  Descriptor& operator=(Descriptor const&) = delete;

  explicit operator bool() const { return number_ >= 0; }
  int number() const { return number_; }
  bool write(std::string_view content) const {
    while (!content.empty()) {
      ssize_t const written = ::write(number_, content.data(), content.size());
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) return false;
      content.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
  }

 private:
  int number_;
};

// The new file beside the old one, which goes unless it is put in the other's place.
class NewFile {
 public:
  explicit NewFile(std::string const& target)
      : target_(target),
        path_(fmt::format("{}.new-{}", target, getpid())),
        descriptor_(path_, O_CREAT | O_EXCL) {}
  ~NewFile() {
    if (descriptor_) unlink(path_.c_str());
  }
  NewFile(NewFile const&) = delete;
  NewFile& operator=(NewFile const&) = delete;

  explicit operator bool() const { return static_cast<bool>(descriptor_); }
  bool become(std::string_view content) {
    struct stat old {};
    if (stat(target_.c_str(), &old) == 0) fchmod(descriptor_.number(), old.st_mode & 07777);
    return descriptor_.write(content) && rename(path_.c_str(), target_.c_str()) == 0;
  }

 private:
  std::string target_;
  std::string path_;
  Descriptor descriptor_;
};

// Behind symbolic links, which stay; "" for what is no place for a new file: pipes, devices, and
// folders, which opening will tell of.
std::string placeOf(std::string const& file) {
  std::error_code failed;
  fs::path const place = fs::weakly_canonical(file, failed);
  if (failed) return "";
  fs::file_type const type = fs::status(place, failed).type();
  bool const isNew = type == fs::file_type::not_found;
  return isNew || type == fs::file_type::regular ? place.string() : "";
}

}  // namespace

void checkReplaceable(std::string const& file) {
  if (fs::is_directory(file)) fail(file, EISDIR);
  std::string const place = placeOf(file);
  if (!place.empty() && NewFile(place)) return;
  int const reason = place.empty() ? 0 : errno;
  // What is there and takes no file beside it is written where it is.
  if (access(file.c_str(), W_OK) != 0) fail(file, reason != 0 ? reason : errno);
}

void replaceFile(std::string const& file, std::string_view content) {
  if (std::string const place = placeOf(file); !place.empty()) {
    if (NewFile made(place); made) {
      if (!made.become(content)) fail(file);
      return;
    }
  }
  Descriptor const there(file, O_CREAT | O_TRUNC);
  if (!there || !there.write(content)) fail(file);
}

}  // namespace shell

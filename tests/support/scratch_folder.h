#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace testing_support {

// A folder that no other process has, gone with this object.
class ScratchFolder {
 public:
  ScratchFolder() : name_(testing::TempDir() + "tvmathrng_XXXXXX") {
    if (!mkdtemp(name_.data())) throw std::runtime_error("no folder " + name_);
  }
  ~ScratchFolder() { std::filesystem::remove_all(name_); }
  ScratchFolder(ScratchFolder const&) = delete;
  ScratchFolder& operator=(ScratchFolder const&) = delete;

  std::filesystem::path path() const { return name_; }

 private:
  std::string name_;
};

}  // namespace testing_support

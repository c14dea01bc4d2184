// Runs a fuzzing program's saved inputs, once each: what stands in for libFuzzer in a plain build.
//
//     fuzz_NAME FOLDER

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz/fuzz_target.h"

int main(int count, char** words) {
  if (count != 2) {
    std::fprintf(stderr, "usage: %s FOLDER\n", words[0]);
    return 2;
  }
  int files = 0;
  for (auto const& entry : std::filesystem::directory_iterator(words[1])) {
    std::ifstream file(entry.path(), std::ios::binary);
    std::vector<char> const bytes{std::istreambuf_iterator<char>(file), {}};
    std::fprintf(stderr, "%s\n", entry.path().c_str());
    LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const*>(bytes.data()), bytes.size());
    ++files;
  }
  LLVMFuzzerTestOneInput(nullptr, 0);
  if (files == 0) std::fprintf(stderr, "%s has no files\n", words[1]);
  return files == 0;
}

#include "tests/support/data_folder.h"

// The one source that is compiled with a path of the tree: the others are the same in every tree,
// so that a compiler cache serves them all.
std::string const& dataFolder() {
  static const std::string folder = TV_TEST_DATA;
  return folder;
}

// The first draws of generators by name, held against the files of tests/kat/draws: one for each
// generator whose draws are published, named for it.

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

#include "rng/mr_functions.h"
#include "tests/support/data_folder.h"
#include "tests/support/known_answers.h"

namespace {

TEST(KnownDraws, ComeFromSeedsOfEveryGeneratorThatHasAFile) {
  std::size_t values = 0;
  for (auto const& file : std::filesystem::directory_iterator(dataFolder() + "/kat/draws")) {
    std::string const generator = file.path().stem();
    SCOPED_TRACE(generator);
    for (auto const& row : known_answers::rows("kat/draws/" + generator + ".txt")) {
      auto const seed = static_cast<unsigned>(std::stoul(row.at(0)));
      std::unique_ptr<randstream> const stream(
          mrCreateRNGStream(generator.c_str(), 1, 0, seed, nullptr, 0));
      ASSERT_TRUE(row.at(1) == "full" || row.at(1) == "reduced");
      stream->setFullPrecision(row[1] == "full");
      for (std::size_t i = 2; i < row.size(); ++i, ++values) {
        double draw;
        stream->randuFcn(&draw, 1);
        EXPECT_EQ(draw, std::stod(row[i])) << "seed " << seed << ", draw " << i - 1;
      }
    }
  }
  EXPECT_GT(values, 0u);
}

}  // namespace

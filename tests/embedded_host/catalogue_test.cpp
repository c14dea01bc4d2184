// Every error and warning of the library has a text, with the arguments that it comes with.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "embedded_host/messages.h"
#include "tfl_rng/generator_catalogue.h"

namespace {

struct Row {
  std::string identifier;
  std::size_t arguments;
};

// "RandStream::create" as the path of an identifier.
std::string path(std::string qualified) {
  for (std::size_t at; (at = qualified.find("::")) != std::string::npos;) qualified.erase(at, 1);
  return qualified;
}

std::vector<Row> const kRows = {
#define TV_KEY(where, key, arguments) {"TALVOR:" + path(#where) + ":" #key, arguments},
#define TV_COMPONENT_KEY(where, key, arguments) {"TALVOR:" #where ":" #key, arguments},
#define TV_PLAIN_KEY(key, arguments) {"TALVOR:" #key, arguments},
#include "errors/catalogue.def"
#undef TV_PLAIN_KEY
#undef TV_COMPONENT_KEY
#undef TV_KEY
};

TEST(Catalogue, HasATextForEveryKeyThatUsesEveryArgument) {
  for (Row const& row : kRows) {
    EXPECT_TRUE(embedded_host::hasMessage(row.identifier)) << row.identifier;
    EXPECT_EQ(embedded_host::messageArguments(row.identifier), row.arguments) << row.identifier;
  }
}

TEST(Catalogue, HasATextForEveryErrorOfEveryGenerator) {
  for (tfl_rng::Generator const& generator : tfl_rng::generators()) {
    std::vector<std::string> keys{"InvalidParameter", "InvalidState"};
    if (generator.hasSubstreams()) {
      keys.insert(keys.end(), {"TooManyStreams", "SubstreamsIndexOutOfRange"});
    } else {
      keys.push_back("MultipleStreams");
    }
    for (std::string const& key : keys) {
      std::string const identifier = std::string("TALVOR:RandStream:") + generator.name + ":" + key;
      EXPECT_TRUE(embedded_host::hasMessage(identifier)) << identifier;
      EXPECT_EQ(embedded_host::messageArguments(identifier), 0u) << identifier;
    }
  }
}

}  // namespace

#include <gmock/gmock.h>

#include <set>

#include "errors/generator_errors.h"
#include "tests/support/identifiers.h"

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

struct CatalogueRow {
  char const* identifier;
  int arguments;
};

// Every key of the catalogue and of the registry of generators.
std::vector<CatalogueRow> catalogue() {
#define TV_KEY(path, key, arguments) {"TALVOR::" #path ":" #key, arguments},
#define TV_COMPONENT_KEY(catalog, key, arguments) {"TALVOR:" #catalog ":" #key, arguments},
#define TV_PLAIN_KEY(key, arguments) {"TALVOR:" #key, arguments},
#define FAMILY_KEYS_Single(name) {"TALVOR:RandStream:" #name ":MultipleStreams", 0},
#define FAMILY_KEYS_Substreams(name)                 \
  {"TALVOR:RandStream:" #name ":TooManyStreams", 0}, \
      {"TALVOR:RandStream:" #name ":SubstreamsIndexOutOfRange", 0},
#define TFL_GENERATOR(name, core, otherSpelling, family, stateClass, stateLen, normals, period) \
  {"TALVOR:RandStream:" #name ":InvalidParameter", 0},                                          \
      {"TALVOR:RandStream:" #name ":InvalidState", 0}, FAMILY_KEYS_##family(name)
  return {
#include "errors/catalogue.def"
#include "tfl_rng/generators.def"
  };
}

TEST(Errors, EveryKeyHasATextThatUsesItsArguments) {
  for (CatalogueRow const& row : catalogue()) {
    std::string identifier = row.identifier;
    for (std::size_t at; (at = identifier.find("::")) != std::string::npos;)
      identifier.erase(at, 1);
    const std::size_t colon = identifier.rfind(':');
    std::vector<foundation::core::except::Argument> arguments;
    for (int i = 0; i < row.arguments; ++i) arguments.emplace_back("argument" + std::to_string(i));
    const std::string text = renderMessage(
        {identifier.substr(0, colon), identifier.substr(colon + 1), std::move(arguments)});
    EXPECT_GT(text.size(), 10U) << identifier;
    EXPECT_THAT(text, Not(HasSubstr(identifier))) << "no text in the catalogue";
    for (int i = 0; i < row.arguments; ++i)
      EXPECT_THAT(text, HasSubstr("argument" + std::to_string(i))) << identifier;
  }
}

TEST(Errors, KeysSpellTheirIdentifiersAndKeepTypedArguments) {
  char const* name = "mt42";
  char type[32] = "legacy";
  using namespace TALVOR::RandStream;
  EXPECT_EQ(create::UnknownRNGType(name).identifier(), "TALVOR:RandStream:create:UnknownRNGType");
  EXPECT_EQ(TALVOR::RandStream::mt19937ar::InvalidState().identifier(),
            "TALVOR:RandStream:mt19937ar:InvalidState");
  EXPECT_EQ(component_TALVOR::catalog_RandStream::key_InvalidHandle().identifier(),
            "TALVOR:RandStream:InvalidHandle");
  EXPECT_EQ(TALVOR::NonIntegerInput().identifier(), "TALVOR:NonIntegerInput");
  using testing_support::argumentsOf;
  EXPECT_EQ(argumentsOf([&] { errors::raise(set::SubstreamsNotSupported(type)); }), "legacy");
  EXPECT_EQ(argumentsOf([&] { errors::raise(TALVOR::randi::invalidOutputType(u"uint64")); }),
            "uint64");
  EXPECT_EQ(argumentsOf([&] { errors::raise(set::CantInitRandnAlg(name, type)); }), "mt42|legacy");
}

TEST(Errors, RaisedErrorIsCaughtByItsTypeAndCanBeClonedAndRethrown) {
  using Key = TALVOR::RandStream::randi::LimitsTooLarge;
  using Error = foundation::core::except::Exception<Key, std::exception, void>;
  std::unique_ptr<foundation::core::except::AnyException> copy;
  try {
    errors::raise(Key(), 2);
    FAIL();
  } catch (std::exception const& error) {
    auto const& typed = dynamic_cast<Error const&>(error);
    EXPECT_EQ(typed.GetID(), "TALVOR:RandStream:randi:LimitsTooLarge");
    EXPECT_EQ(typed.GetBaseMsgIDObj().faultyArgument(), 2);
    EXPECT_STREQ(typed.what(), renderMessage(Key()).c_str());
    copy = typed.clone();
  }
  EXPECT_THROW(copy->rethrow(), Error);
}

}  // namespace

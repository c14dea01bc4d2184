#include <gmock/gmock.h>

#include "errors/generator_errors.h"
#include "tests/support/identifiers.h"

namespace {

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

#include "embedded_host/messages.h"

#include <gmock/gmock.h>

#include "embedded_host/vm_context.h"
#include "tests/support/identifiers.h"

using namespace embedded_host;
using foundation::core::except::AnyException;
using foundation::core::except::MessageId;
using testing::HasSubstr;

using testing_support::identifierOf;

namespace {

TEST(Messages, FillsArgumentsInByPosition) {
  MessageId const id("TALVOR:RandStream:set", "CantInitRandnAlg", {"Polar", "mt19937ar"});
  std::string const text = renderMessage(id);
  EXPECT_THAT(text, HasSubstr("generator \"mt19937ar\""));
  EXPECT_THAT(text, HasSubstr("normal values, \"Polar\""));
}

TEST(Messages, WritesWholeNumbersWithoutAPoint) {
  EXPECT_THAT(renderMessage(MessageId("TALVOR", "nomem", {4096.0})), HasSubstr(" 4096 bytes"));
}

TEST(Messages, GivesEveryGeneratorTheTextsOfItsFamily) {
  MessageId const id("TALVOR:RandStream:mrg32k3a", "InvalidState");
  EXPECT_THAT(renderMessage(id), HasSubstr("\"mrg32k3a\""));
  EXPECT_TRUE(hasMessage(id.identifier()));
  // A row of the generator's own comes before the family's.
  EXPECT_THAT(renderMessage(MessageId("TALVOR:RandStream:mlfg6331_64", "UnableToComputeALFGState")),
              HasSubstr("steps"));
}

TEST(Messages, RowsTakenOverFromAnotherPathNameTheirOwnFunction) {
  EXPECT_THAT(renderMessage(MessageId("TALVOR:RandStream:randn", "inputType")), HasSubstr("randn"));
  // randn has its own text for the state, of two elements.
  EXPECT_THAT(renderMessage(MessageId("TALVOR:randn", "invalidState")), HasSubstr("2-by-1"));
  EXPECT_THAT(renderMessage(MessageId("TALVOR:rand", "invalidState")), HasSubstr("35-by-1"));
}

TEST(Messages, HintSaysWhatWouldWork) {
  EXPECT_THAT(renderHint(MessageId("TALVOR:rand", "invalidOutputType")), HasSubstr("randi("));
  EXPECT_EQ(renderHint(MessageId("TALVOR", "maxlhs")), "");
}

TEST(Messages, UnknownIdentifierOrMissingArgumentStillRenders) {
  EXPECT_THAT(renderMessage(MessageId("TALVOR:nowhere", "Key", {"a", 2.0})),
              testing::AllOf(HasSubstr("TALVOR:nowhere:Key"), HasSubstr("a, 2")));
  EXPECT_THAT(renderMessage(MessageId("TALVOR:RandStream:create", "UnknownRNGType")),
              HasSubstr("TALVOR:RandStream:create:UnknownRNGType"));
  EXPECT_THAT(renderMessage(MessageId("NoColon", "")), HasSubstr("NoColon"));
  EXPECT_EQ(renderHint(MessageId("TALVOR:nowhere", "Key")), "");
  EXPECT_FALSE(hasMessage("TALVOR:nowhere:Key"));
}

// A misspelt placeholder, or a brace left open, would only show when that very error comes up.
TEST(Messages, EveryTextAndHintRendersWithTheArgumentsItUses) {
  for (std::string const& identifier : messageIdentifiers()) {
    SCOPED_TRACE(identifier);
    HostKey const id(identifier, std::vector<foundation::core::except::Argument>(
                                     messageArguments(identifier), "<value>"));
    std::string const text = renderMessage(id);
    EXPECT_THAT(text, testing::Not(HasSubstr("There is no text")));
    EXPECT_THAT(text, testing::AnyOf(testing::EndsWith("."), testing::EndsWith(": <value>")));
    EXPECT_THAT(text + renderHint(id), testing::Not(testing::ContainsRegex("[{}]")));
  }
}

TEST(Errors, CarryIdentifierArgumentsAndText) {
  try {
    raiseHostError("TALVOR:object:UnknownProperty", "RandStream", std::string("Sead"));
  } catch (AnyException const& error) {
    EXPECT_EQ(error.GetID(), "TALVOR:object:UnknownProperty");
    EXPECT_EQ(error.GetBaseMsgIDObj().path(), "TALVOR:object");
    EXPECT_EQ(error.GetBaseMsgIDObj().key(), "UnknownProperty");
    EXPECT_EQ(error.GetBaseMsgIDObj().arguments().size(), 2u);
    EXPECT_THAT(error.text(), HasSubstr("\"Sead\""));
    auto const copy = error.clone();
    EXPECT_EQ(identifierOf([&] { copy->rethrow(); }), "TALVOR:object:UnknownProperty");
  }
}

TEST(Errors, AreCaughtAsStandardExceptions) {
  try {
    raiseHostError("TALVOR:maxlhs");
    FAIL();
  } catch (std::exception const& error) {
    EXPECT_STREQ(error.what(), "Too many outputs.");
  }
}

TEST(Warnings, GoToTheSinkOfTheCurrentVm) {
  std::vector<std::string> seen;
  VmContext quiet, listening;
  listening.setWarningSink([&](MessageId const& id, std::string const& text) {
    seen.push_back(id.identifier() + "|" + text);
  });
  quiet.setWarningSink([](MessageId const&, std::string const&) {});
  MessageId const warning("TALVOR:RandStream:get", "SubstreamIndexTooLarge");
  {
    EnterVm const outer(listening);
    {
      EnterVm const inner(quiet);
      txWarningMsgId(warning);
    }
    txWarningMsgId(warning);
  }
  ASSERT_EQ(seen.size(), 1u);
  EXPECT_THAT(seen[0],
              testing::AllOf(testing::StartsWith("TALVOR:RandStream:get:SubstreamIndexTooLarge|"),
                             HasSubstr("2^48")));
}

TEST(Warnings, GoToStandardErrorWithoutASink) {
  testing::internal::CaptureStderr();
  txWarningMsgId(MessageId("TALVOR:RandStream:get", "SubstreamIndexTooLarge"));
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr("[TALVOR:RandStream:get:SubstreamIndexTooLarge]"));
}

}  // namespace

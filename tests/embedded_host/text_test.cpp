#include "embedded_host/text.h"

#include <gtest/gtest.h>

#include "host/strings.h"
#include "tests/support/identifiers.h"

using namespace embedded_host;

using testing_support::identifierOf;

namespace {

TEST(Text, Utf8AndUtf16ConvertBothWays) {
  std::string const utf8 =
      "a\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
  std::u16string const utf16 = u"a\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF";
  EXPECT_EQ(utf8ToUtf16(utf8), utf16);
  EXPECT_EQ(utf16ToUtf8(utf16), utf8);
}

TEST(Text, IllFormedUtf8BecomesTheReplacementCharacter) {
  EXPECT_EQ(utf8ToUtf16("\x80z"), u"\uFFFDz");                    // continuation alone
  EXPECT_EQ(utf8ToUtf16("\xC3"), u"\uFFFD");                      // cut off
  EXPECT_EQ(utf8ToUtf16("\xC0\x80"), u"\uFFFD\uFFFD");            // overlong
  EXPECT_EQ(utf8ToUtf16("\xE0\x80\x80"), u"\uFFFD\uFFFD\uFFFD");  // overlong
  EXPECT_EQ(utf8ToUtf16("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD");  // surrogate
  EXPECT_EQ(utf8ToUtf16("\xF5z"), u"\uFFFDz");                    // beyond Unicode
  EXPECT_EQ(utf8ToUtf16("\xF4\x90\x80\x80"), u"\uFFFD\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(utf8ToUtf16("\xE2\x82z"), u"\uFFFD\uFFFDz");
}

TEST(Text, LoneSurrogatesBecomeTheReplacementCharacter) {
  std::u16string text = u"x_";
  for (char16_t lone : {u'\xD800', u'\xDBFF', u'\xDC00', u'\xDFFF'}) {
    text[1] = lone;
    EXPECT_EQ(utf16ToUtf8(text), "x\xEF\xBF\xBD");
    EXPECT_EQ(utf16ToUtf8(text + u"y"), "x\xEF\xBF\xBDy");
  }
}

TEST(Text, BoundedCopyStopsAtTheLimitAndEndsWithNul) {
  char target[5] = {'#', '#', '#', '#', '#'};
  utStrncpy(target, "abcdef", 3);
  EXPECT_EQ(std::string(target, 5), std::string("abc\0#", 5));
  utStrncpy(target, "x", 3);
  EXPECT_STREQ(target, "x");
  utStrncpy(target, nullptr, 3);
  EXPECT_STREQ(target, "");
}

TEST(Text, AsciiConversionRefusesEverythingElse) {
  EXPECT_EQ(utToAscii(u"Ziggurat\x7F"), "Ziggurat\x7F");
  EXPECT_EQ(identifierOf([] { utToAscii(u"\u0080"); }), "TALVOR:string:NotAscii");
  // Fullwidth letters must not fold to ASCII by their low byte.
  EXPECT_EQ(identifierOf([] { utToAscii(u"\u0161"); }), "TALVOR:string:NotAscii");
}

TEST(Text, CaseIsIgnoredForAsciiLettersOnly) {
  EXPECT_TRUE(equalIgnoringAsciiCase("LiKe", "lIkE"));
  EXPECT_FALSE(equalIgnoringAsciiCase("like", "likes"));
  EXPECT_FALSE(equalIgnoringAsciiCase("[", "{"));
  EXPECT_FALSE(equalIgnoringAsciiCase("@", "`"));
  EXPECT_FALSE(equalIgnoringAsciiCase("\xC4", "\xE4"));
}

}  // namespace

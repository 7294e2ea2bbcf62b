#include "foundation/json/Lexer.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/FailingAllocations.hpp"

namespace foundation::json {
namespace {

using enum Token;

struct Step {
  Token token;
  std::size_t begin;
  std::size_t end;
  friend bool operator==(const Step&, const Step&) = default;
};

std::vector<Step> stepsOf(Lexer lexer) {
  std::vector<Step> steps;
  do {
    const Token token = lexer.next();
    steps.push_back({token, lexer.begin(), lexer.end()});
  } while (steps.back().token != kEnd && steps.back().token != kError);
  return steps;
}

TEST(Lexer, ReportsTokensAndTheirPositions) {
  const std::vector<Step> expected{{kBeginObject, 1, 2}, {kKey, 3, 6},      {kBeginArray, 9, 10},
                                   {kNumber, 10, 13},    {kTrue, 15, 19},   {kFalse, 20, 25},
                                   {kNull, 26, 30},      {kString, 31, 35}, {kEndArray, 36, 37},
                                   {kEndObject, 38, 39}, {kEnd, 40, 40}};
  EXPECT_EQ(stepsOf(Lexer(u" { \"a\" : [1.5, true,false,null,\"\\n\" ] }\n")), expected);
}

TEST(Lexer, StringsKeepUnpairedSurrogatesAsUnits) {
  Lexer lexer(u"[\"a\\ud83d\", \"\\ud83d\\uDE00\\/\\b\\f\\n\\r\\t\\\"\\\\\", \"raw\"]");
  lexer.next();
  lexer.next();
  EXPECT_EQ(lexer.text(), (std::u16string{u'a', 0xD83D}));
  EXPECT_EQ(lexer.utf8(), "a\xEF\xBF\xBD");
  lexer.next();
  EXPECT_EQ(lexer.text(), u"\U0001F600/\b\f\n\r\t\"\\");
  EXPECT_EQ(lexer.utf8(), "\xF0\x9F\x98\x80/\b\f\n\r\t\"\\");
  lexer.next();
  EXPECT_EQ(lexer.text(), u"raw");
}

// Each half of a pair may be escaped or not.
TEST(Lexer, EscapedAndRawHalvesMakeAPair) {
  for (const std::u16string half :
       {u"\"\\ud83d\xDE00\"", u"\"\xD83D\\ude00\"", u"\"\xD83D\xDE00\""}) {
    Lexer lexer(half);
    lexer.next();
    EXPECT_EQ(lexer.utf8(), "\xF0\x9F\x98\x80");
  }
}

struct Failure {
  std::u16string text;
  std::size_t position;
  std::string reason;
};

const std::vector<Failure> kFailures{
    {u"", 0, "the text ends too early"},
    {u"  ", 2, "the text ends too early"},
    {u"[1,", 3, "the text ends too early"},
    {u"[1", 2, "the text ends too early"},
    {u"{\"a\"", 4, "the text ends too early"},
    {u"\"abc", 4, "the text ends too early"},
    {u"x", 0, "a value is missing"},
    {u"[1,]", 3, "a value is missing"},
    {u"[,1]", 1, "a value is missing"},
    {u"{\"a\":}", 5, "a value is missing"},
    {u"trux", 0, "a value is missing"},
    {u"nul ", 0, "a value is missing"},
    {u"falsy", 0, "a value is missing"},
    {u"-x", 1, "a value is missing"},
    {u"+1", 0, "a value is missing"},
    {u".5", 0, "a value is missing"},
    {u"{a:1}", 1, "a key in quotes is missing"},
    {u"{\"a\":1,}", 7, "a key in quotes is missing"},
    {u"{1:1}", 1, "a key in quotes is missing"},
    {u"{\"a\" 1}", 5, "a ':' is missing"},
    {u"{\"a\":1 \"b\"}", 7, "a ',' or '}' is missing"},
    {u"{\"a\":1]", 6, "a ',' or '}' is missing"},
    {u"[1 2]", 3, "a ',' or ']' is missing"},
    {u"[1}", 2, "a ',' or ']' is missing"},
    {u"[01]", 2, "a ',' or ']' is missing"},
    {u"1 2", 2, "there is text behind the value"},
    {u"{}]", 2, "there is text behind the value"},
    {u"[1.]", 3, "a digit is missing"},
    {u"[1e]", 3, "a digit is missing"},
    {u"[1e+]", 4, "a digit is missing"},
    {u"[1E-x]", 4, "a digit is missing"},
    {u"[1e400]", 1, "the number is beyond the largest double"},
    {u"\"a\nb\"", 2, "a control character stands in a string"},
    {u"\"a\tb\"", 2, "a control character stands in a string"},
    {{u'"', 0, u'"'}, 1, "a control character stands in a string"},
    {u"{\"a\x1F\":1}", 3, "a control character stands in a string"},
    {u"\"\\x\"", 1, "there is no such escape"},
    {u"\"\\U0041\"", 1, "there is no such escape"},
    {u"\"\\u12g4\"", 1, "there is no such escape"},
    {u"\"\\u12/4\"", 1, "there is no such escape"},
    {u"\"\\u12", 1, "there is no such escape"},
    {u"\"\\", 1, "there is no such escape"},
    {u"\u00A01", 0, "a value is missing"},
    {u"\v1", 0, "a value is missing"},
    {u"\uFEFF1", 0, "a value is missing"},
};

TEST(Lexer, ReportsWhereAndWhyATextIsNotJson) {
  for (const auto& [text, position, reason] : kFailures) {
    Lexer lexer(text);
    Token token = lexer.next();
    while (token != kError && token != kEnd) {
      token = lexer.next();
    }
    ASSERT_EQ(token, kError) << testing::PrintToString(text);
    EXPECT_EQ(lexer.begin(), position) << testing::PrintToString(text);
    EXPECT_EQ(lexer.error(), reason) << testing::PrintToString(text);
    EXPECT_EQ(lexer.next(), kError);
  }
}

TEST(Lexer, HexDigitsMayBeOfEitherCase) {
  Lexer lexer(u"\"\\u00e9\\u00E9\\uABCD\\uabcd\"");
  lexer.next();
  EXPECT_EQ(lexer.text(), u"\u00E9\u00E9\uABCD\uABCD");
}

TEST(Lexer, OnlyHexDigitsMakeAnEscape) {
  for (char16_t unit = 0; unit < 0x100; ++unit) {
    const bool digit = unit >= u'0' && unit <= u'9';
    const bool letter = (unit >= u'a' && unit <= u'f') || (unit >= u'A' && unit <= u'F');
    const int value = digit ? unit - u'0' : (unit & 7) + 9;
    for (std::size_t at = 0; at < 4; ++at) {
      std::u16string text = u"\"\\u0000\"";
      text[3 + at] = unit;
      Lexer lexer(text);
      ASSERT_EQ(lexer.next() == kString, digit || letter) << int{unit};
      if (!digit && !letter) continue;
      const auto expected = static_cast<char16_t>(value << (12 - 4 * at));
      ASSERT_EQ(lexer.text(), std::u16string(1, expected));
    }
  }
}

TEST(Lexer, TextWithEscapesTakesOneAllocation) {
  const std::u16string text = u"\"" + std::u16string(1000, u'a') + u"\\n\"";
  Lexer lexer(text);
  lexer.next();
  const std::size_t before = quenlith::test::allocationCount();
  EXPECT_EQ(lexer.text().size(), 1001U);
  EXPECT_EQ(quenlith::test::allocationCount() - before, 1U);
}

TEST(Lexer, LineBreaksAreOptionallyRefused) {
  EXPECT_EQ(stepsOf(Lexer(u"[ \t1 \t]", 0, Space::kBlanks)).back().token, kEnd);
  EXPECT_EQ(stepsOf(Lexer(u"[\n1]", 0, Space::kBlanks)).back(), (Step{kError, 1, 1}));
  EXPECT_EQ(stepsOf(Lexer(u"[\r1]", 0, Space::kBlanks)).back().token, kError);
  EXPECT_EQ(stepsOf(Lexer(u"[\r\n1]")).back().token, kEnd);
}

TEST(Lexer, NestingHasALimit) {
  for (const std::size_t limit : {std::size_t{1}, std::size_t{64}, Lexer::kMaxDepth}) {
    const std::u16string fits = std::u16string(limit, u'[') + std::u16string(limit, u']');
    EXPECT_EQ(stepsOf(Lexer(fits, 0, Space::kAll, limit)).back().token, kEnd) << limit;
    const std::u16string deeper = u"[" + fits + u"]";
    EXPECT_EQ(stepsOf(Lexer(deeper, 0, Space::kAll, limit)).back(), (Step{kError, limit, limit}));
  }
}

TEST(Lexer, ReportsHowManyContainersAreOpen) {
  Lexer lexer(u"{\"a\":[1]}");
  std::vector<std::size_t> depths;
  while (lexer.next() != kEnd) {
    depths.push_back(lexer.depth());
  }
  EXPECT_EQ(depths, (std::vector<std::size_t>{1, 1, 2, 2, 1, 0}));
}

}  // namespace
}  // namespace foundation::json

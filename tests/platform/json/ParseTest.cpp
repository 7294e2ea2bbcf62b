#include "foundation/json/parse.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "foundation/json/Lexer.hpp"
#include "support/FailingAllocations.hpp"

namespace foundation::json {
namespace {

Object objectOf(std::u16string_view text) {
  const auto read = parseEmbeddedObject(text, 0);
  EXPECT_TRUE(read) << testing::PrintToString(text);
  return read ? read->object : Object();
}

// Numbers, as members of an embedded object.
struct LiteralCase {
  std::u16string text;
  Value value;
};

const std::vector<LiteralCase> kLiterals{
    // Whole numbers: signed where they fit, then unsigned, then double.
    {u"0", Value(std::int64_t{0})},
    {u"-0", Value(std::int64_t{0})},
    {u"7", Value(7)},
    {u"-7", Value(-7)},
    {u"9223372036854775807", Value(std::numeric_limits<std::int64_t>::max())},
    {u"-9223372036854775808", Value(std::numeric_limits<std::int64_t>::min())},
    {u"9223372036854775808", Value(std::uint64_t{1} << 63U)},
    {u"18446744073709551615", Value(std::numeric_limits<std::uint64_t>::max())},
    {u"18446744073709551616", Value(18446744073709551616.0)},
    {u"-9223372036854775809", Value(-9223372036854775809.0)},
    {u"28446744073709551616", Value(28446744073709551616.0)},
    {u"184467440737095516150", Value(184467440737095516150.0)},
    // A fraction or an exponent makes a double.
    {u"1.0", Value(1.0)},
    {u"1e0", Value(1.0)},
    {u"1E2", Value(100.0)},
    {u"1e+2", Value(100.0)},
    {u"100e-2", Value(1.0)},
    {u"0.1", Value(0.1)},
    {u"-1.50", Value(-1.5)},
    {u"0.000001e6", Value(1.0)},
    {u"123456.789e3", Value(123456789.0)},
    // The limits of the range, and the numbers nearest to them.
    {u"1.7976931348623157e308", Value(std::numeric_limits<double>::max())},
    {u"1.7976931348623158e308", Value(std::numeric_limits<double>::max())},
    {u"-1.7976931348623157e308", Value(-std::numeric_limits<double>::max())},
    {u"4.9e-324", Value(std::numeric_limits<double>::denorm_min())},
    {u"2.5e-324", Value(std::numeric_limits<double>::denorm_min())},
    {u"2.4e-324", Value(0.0)},
    {u"1e-400", Value(0.0)},
    {u"1e-99999999999999999999999", Value(0.0)},
    {u"0e99999999999999999999999", Value(0.0)},
    {u"0.0e400", Value(0.0)},
    {u"2.2250738585072011e-308", Value(2.2250738585072011e-308)},
    // Halfway between two doubles, and just above and below: the digit that decides comes late.
    {u"9007199254740993.0", Value(9007199254740992.0)},
    {u"9007199254740993.0" + std::u16string(900, u'0') + u"1", Value(9007199254740994.0)},
    {u"9007199254740992.9" + std::u16string(900, u'9'), Value(9007199254740992.0)},
    {u"9007199254740993.0" + std::u16string(900, u'0'), Value(9007199254740992.0)},
    {u"1" + std::u16string(400, u'0') + u"e-400", Value(1.0)},
    {u"0." + std::u16string(900, u'0') + u"1e901", Value(1.0)},
    {u"0." + std::u16string(400, u'0') + u"1e401", Value(1.0)},
    {u"1" + std::u16string(308, u'0'), Value(1e308)},
};

TEST(ReadNumber, TakesTheKindThatFits) {
  for (const auto& [text, value] : kLiterals) {
    const Object object = objectOf(u"{\"n\":" + text + u"}");
    EXPECT_EQ(object.at("n"), value) << testing::PrintToString(text);
  }
}

TEST(ReadNumber, MinusZeroKeepsItsSignAsADouble) {
  for (const std::u16string zero : {u"-0.0", u"-0e5", u"-1e-400", u"-0.0000e-1"}) {
    EXPECT_TRUE(std::signbit(objectOf(u"{\"n\":" + zero + u"}").at("n").get<double>()));
  }
  EXPECT_FALSE(std::signbit(objectOf(u"{\"n\":0.0}").at("n").get<double>()));
}

TEST(ReadNumber, BeyondTheLargestDoubleIsRefused) {
  for (const std::u16string& number : std::vector<std::u16string>{
           u"1.7976931348623159e308", u"-1.7976931348623159e308", u"1e309",
           u"1e99999999999999999999", u"1" + std::u16string(309, u'0'),
           u"-1" + std::u16string(5000, u'0'), u"0." + std::u16string(1000, u'0') + u"1e1400"}) {
    EXPECT_FALSE(parseEmbeddedObject(u"{\"n\":" + number + u"}", 0)) << number.size();
    EXPECT_FALSE(measureEmbeddedObject(u"{\"n\":" + number + u"}", 0).end) << number.size();
  }
}

TEST(EmbeddedObject, EndsAfterItsClosingBrace) {
  const std::u16string_view text = u"x {\"a\": {\"b\": [1, {}]}} > {";
  const auto read = parseEmbeddedObject(text, 2);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->end, 23U);
  EXPECT_EQ(measureEmbeddedObject(text, 2).end, 23U);
  EXPECT_EQ(read->object,
            (Object{{"a", Value(Object{{"b", Value(Array{Value(1), Value(Object())})}})}}));
}

TEST(EmbeddedObject, ContainsEveryKindOfValue) {
  EXPECT_EQ(objectOf(u"{\"t\":true,\"f\":false,\"n\":null,\"s\":\"x\",\"a\":[],\"o\":{}}"),
            (Object{{"t", Value(true)},
                    {"f", Value(false)},
                    {"n", Value(Null())},
                    {"s", Value("x")},
                    {"a", Value(Array())},
                    {"o", Value(Object())}}));
}

TEST(EmbeddedObject, OfEqualKeysTheLastOneCounts) {
  EXPECT_EQ(objectOf(u"{\"a\":1,\"b\":0,\"\\u0061\":{\"x\":2}}"),
            (Object{{"a", Value(Object{{"x", Value(2)}})}, {"b", Value(0)}}));
  EXPECT_EQ(objectOf(u"{\"a\":{\"x\":2},\"a\":[3]}"), (Object{{"a", Value(Array{Value(3)})}}));
}

TEST(EmbeddedObject, UnpairedSurrogatesBecomeReplacementCharacters) {
  EXPECT_EQ(objectOf(u"{\"\\ud800\":\"\\ude00\xD83D\"}"),
            (Object{{"\xEF\xBF\xBD", Value("\xEF\xBF\xBD\xEF\xBF\xBD")}}));
}

TEST(EmbeddedObject, NestsSixtyFourLevelsDeep) {
  const auto nested = [](std::size_t depth) {
    return u"{\"a\":" + std::u16string(depth - 1, u'[') + std::u16string(depth - 1, u']') + u"}";
  };
  EXPECT_TRUE(parseEmbeddedObject(nested(64), 0));
  EXPECT_FALSE(parseEmbeddedObject(nested(65), 0));
  EXPECT_EQ(measureEmbeddedObject(nested(64), 0).end, nested(64).size());
  EXPECT_FALSE(measureEmbeddedObject(nested(65), 0).end);
}

TEST(EmbeddedObject, ReportsWhatIsWrong) {
  const ObjectExtent extent = measureEmbeddedObject(u"{\"a\":\n1}", 0);
  EXPECT_EQ(extent.end, std::nullopt);
  EXPECT_EQ(extent.failure.position, 5U);
  EXPECT_STREQ(extent.failure.reason, "a value is missing");
}

TEST(EmbeddedObject, MeasuringDoesNotAllocate) {
  const std::u16string text =
      u"{\"a\":[1.5,\"\\u0041\"],\"n\":1" + std::u16string(2000, u'0') + u"e-1900}";
  const std::size_t before = quenlith::test::allocationCount();
  EXPECT_EQ(measureEmbeddedObject(text, 0).end, text.size());
  EXPECT_EQ(quenlith::test::allocationCount(), before);
}

TEST(EmbeddedObject, FailingAllocationsOnlyThrowBadAlloc) {
  const std::u16string text =
      u"{\"a long key of an object\":[1.5,\"\\u0041 long enough text\",{}]}";
  EXPECT_GT(quenlith::test::failEachAllocation([&] { parseEmbeddedObject(text, 0); }, [] {}), 5U);
}

TEST(ReadText, TakesAnyValueWithAnyWhiteSpace) {
  EXPECT_EQ(parse(u"\r\n[ 1 ,\n\t\"x\" ]\n").value, Value(Array{Value(1), Value("x")}));
  EXPECT_EQ(parse(u"null").value, Value(Null()));
  EXPECT_EQ(parse(u"\"x\"").value, Value("x"));
  EXPECT_EQ(parse(u"-1").value, Value(-1));
}

TEST(ReadText, ReportsWhereATextIsNotJson) {
  const ParseResult result = parse(u"[1,\n oops]");
  EXPECT_FALSE(result.value);
  EXPECT_EQ(result.failure.position, 5U);
  EXPECT_STREQ(result.failure.reason, "a value is missing");
  EXPECT_FALSE(parse(u"{} {}").value);
  EXPECT_FALSE(parse(std::u16string(Lexer::kMaxDepth + 1, u'[')).value);
}

}  // namespace
}  // namespace foundation::json

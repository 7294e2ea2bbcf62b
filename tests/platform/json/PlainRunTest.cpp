#include "foundation/json/plainRun.hpp"

#include <gtest/gtest.h>

#include <string>

namespace foundation::json {
namespace {

bool endsReading(char16_t unit) {
  return unit < 0x20 || unit == u'"' || unit == u'\\';
}
bool endsWriting(char16_t unit) {
  return endsReading(unit) || (unit >= 0x7F && unit <= 0x9F);
}

// Every unit, at every place of the blocks that are looked at at once and of what is left over.
TEST(PlainRun, EveryUnitAtEveryPlaceIsSeen) {
  for (std::size_t size = 1; size <= 19; ++size) {
    for (std::size_t at = 0; at < size; ++at) {
      for (unsigned code = 0; code <= 0xFFFF; code += code < 0x200 ? 1 : 0x7F) {
        const auto unit = static_cast<char16_t>(code);
        std::u16string text(size, u'x');
        text[at] = unit;
        ASSERT_EQ(plainRunEnd(text, 0), endsReading(unit) ? at : size) << code;
        ASSERT_EQ(writableRunEnd(text, 0), endsWriting(unit) ? at : size) << code;
      }
    }
  }
}

TEST(PlainRun, PlainAsciiIsCopiedUpToTheFirstOtherUnit) {
  for (std::size_t size = 1; size <= 35; ++size) {
    for (std::size_t at = 0; at < size; ++at) {
      for (unsigned code = 0; code <= 0xFFFF; code += code < 0x200 ? 1 : 0x7F) {
        const auto unit = static_cast<char16_t>(code);
        std::u16string text(size, u'x');
        std::string expected(size, 'x');
        text[at] = unit;
        if (unit >= 0x7F || endsWriting(unit)) {
          expected.resize(at);
        } else {
          expected[at] = static_cast<char>(unit);
        }
        // One byte more tells what is written behind the room.
        std::string output(size + 1, '-');
        const std::size_t length = copyPlainAscii(text, output.data());
        ASSERT_EQ(output.substr(0, length), expected) << code;
        ASSERT_EQ(output.back(), '-') << code;
      }
    }
  }
  EXPECT_EQ(copyPlainAscii({}, nullptr), 0U);
}

TEST(PlainRun, StartsWhereItIsTold) {
  const std::u16string_view text = u"\"abc\"de";
  EXPECT_EQ(plainRunEnd(text, 1), 4U);
  EXPECT_EQ(plainRunEnd(text, 5), 7U);
  EXPECT_EQ(plainRunEnd(text, 7), 7U);
}

TEST(PlainRun, Utf8EndsAtEscapedCharactersOnly) {
  EXPECT_EQ(writableRunEnd(std::string_view("ab\"c"), 0), 2U);
  EXPECT_EQ(writableRunEnd(std::string_view("ab\x7F"), 0), 2U);
  EXPECT_EQ(writableRunEnd(std::string_view("a\xC2\x9F"), 0), 1U);
  EXPECT_EQ(writableRunEnd(std::string_view("a\xC2\xA0\xC3\x80z"), 0), 6U);
  EXPECT_EQ(writableRunEnd(std::string_view("a\xC2"), 0), 2U);
}

}  // namespace
}  // namespace foundation::json

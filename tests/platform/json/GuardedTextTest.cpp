// JSON texts between inaccessible pages.

#include <gtest/gtest.h>

#include <string>

#include "fl/i18n/ustring.hpp"
#include "foundation/json/Writer.hpp"
#include "foundation/json/parse.hpp"
#include "support/GuardedMemory.hpp"

namespace foundation::json {
namespace {

using quenlith::test::GuardedMemory;

constexpr std::u16string_view kText =
    u"{\"a long key of plain text\": [\"\\u0041\\n and some more plain text\", -12.5e+3, true],\t"
    u"\"\U0001F600\": {\"nothing\": null, \"false\": false, \"whole\": 18446744073709551615}}";

// Every prefix of the text ends at the guard: in a string, an escape, a number or a word.
TEST(GuardedText, IsParsedWithinItsBounds) {
  const GuardedMemory memory(kText.size() * sizeof(char16_t));
  for (std::size_t size = 0; size <= kText.size(); ++size) {
    const std::u16string_view cut = kText.substr(0, size);
    for (const auto& text : {memory.copyToBegin(cut), memory.copyToEnd(cut)}) {
      ASSERT_EQ(parse(text).value.has_value(), size == kText.size()) << size;
      if (size == 0) continue;
      ASSERT_EQ(measureEmbeddedObject(text, 0).end.has_value(), size == kText.size()) << size;
      ASSERT_EQ(parseEmbeddedObject(text, 0).has_value(), size == kText.size()) << size;
    }
  }
}

// Flat objects are measured without the lexer.
TEST(GuardedText, FlatObjectIsMeasuredWithinItsBounds) {
  constexpr std::u16string_view kFlat = u"{ \"a\" : -12.50, \"b\":\"text\",\"c\":true,\"d\":0 }";
  const GuardedMemory memory(kFlat.size() * sizeof(char16_t));
  for (std::size_t size = 1; size <= kFlat.size(); ++size) {
    const std::u16string_view text = memory.copyToEnd(kFlat.substr(0, size));
    ASSERT_EQ(measureEmbeddedObject(text, 0).end.has_value(), size == kFlat.size()) << size;
  }
}

TEST(GuardedText, NumberIsReadWithinItsBounds) {
  for (const std::u16string_view number :
       {u"18446744073709551616", u"-1.25", u"1e5", u"0", u"1E-5"}) {
    const GuardedMemory memory(number.size() * sizeof(char16_t));
    ASSERT_TRUE(parse(memory.copyToEnd(number)).value);
  }
}

TEST(GuardedText, IsWrittenWithinItsBounds) {
  const GuardedMemory memory(kText.size() * sizeof(char16_t));
  for (std::size_t size = 0; size <= kText.size(); ++size) {
    const std::u16string_view cut = kText.substr(0, size);
    std::string expected;
    Writer(expected, Form::kCompact).text(std::u16string(cut));
    for (const auto& text : {memory.copyToBegin(cut), memory.copyToEnd(cut)}) {
      std::string output;
      Writer(output, Form::kCompact).text(text);
      ASSERT_EQ(output, expected);
    }
    const std::string utf8 = fl::i18n::ustring_to_utf8(cut);
    const GuardedMemory bytes(utf8.size() + 1);
    std::string output;
    Writer(output, Form::kCompact).text(bytes.copyToEnd(std::string_view(utf8)));
    ASSERT_EQ(output, expected);
  }
}

}  // namespace
}  // namespace foundation::json

// JSON texts between inaccessible pages.

#include <gtest/gtest.h>

#include <string>

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
  }
}

}  // namespace
}  // namespace foundation::json

#include <gtest/gtest.h>

#include <iostream>
#include <string>

#include "JsonTwin.hpp"
#include "RandomMarkers.hpp"
#include "fl/i18n/ustring.hpp"
#include "foundation/json/Lexer.hpp"
#include "foundation/json/parse.hpp"
#include "oracle/support/RunSettings.hpp"

namespace quenlith::oracle {
namespace {

using fl::i18n::ustring_to_utf8;
using foundation::json::Lexer;

constexpr std::size_t kJsonTexts = 10'000;
constexpr std::size_t kLeastValues = 2'000;

bool isBlank(std::u16string_view text) {
  return text.find_first_not_of(u" \t\n\r") == text.npos;
}

// Compares the results for the whole text. Returns whether it is a JSON value.
bool compareWhole(std::u16string_view text) {
  const auto real = foundation::json::parse(text);
  const auto twin = parseByRapidJson(text, 0, TwinSpace::kAll, Lexer::kMaxDepth);
  const bool isWhole = twin && isBlank(text.substr(twin->end));
  EXPECT_EQ(real.value.has_value(), isWhole) << ustring_to_utf8(text);
  if (real.value && isWhole) {
    EXPECT_TRUE(*real.value == twin->value) << ustring_to_utf8(text);
  }
  return isWhole;
}

bool compareEmbedded(std::u16string_view text, std::size_t from) {
  const auto real = foundation::json::parseEmbeddedObject(text, from);
  const auto measured = foundation::json::measureEmbeddedObject(text, from);
  const auto twin =
      parseByRapidJson(text, from, TwinSpace::kBlanks, foundation::json::kEmbeddedDepth);
  EXPECT_EQ(real.has_value(), twin.has_value()) << ustring_to_utf8(text) << from;
  EXPECT_EQ(measured.end.has_value(), twin.has_value()) << ustring_to_utf8(text) << from;
  if (real && twin) {
    EXPECT_TRUE(foundation::json::Value(real->object) == twin->value) << ustring_to_utf8(text);
    EXPECT_EQ(real->end, twin->end) << ustring_to_utf8(text);
    EXPECT_EQ(measured.end, twin->end) << ustring_to_utf8(text);
  }
  return twin.has_value();
}

struct JsonCounts {
  std::size_t whole = 0;
  std::size_t embedded = 0;
};

void compareParts(const std::u16string& text, JsonCounts& counts) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != u'{' && text[at] != u'"' && text[at] != u'[') continue;
    if (text[at] == u'{') counts.embedded += compareEmbedded(text, at) ? 1U : 0U;
    // From here to the last unit that can end the value, and one unit less.
    const std::size_t last = text.find_last_of(u"}\"]");
    for (std::size_t end = last; end <= last + 1 && end > at; ++end) {
      counts.whole += compareWhole(std::u16string_view(text).substr(at, end - at)) ? 1U : 0U;
    }
  }
}

TEST(JsonOracle, TheParserAgreesWithRapidJson) {
  const RunSettings settings = RunSettings::fromEnvironment(kJsonTexts);
  JsonCounts counts;
  if (settings.only) {
    compareParts(RandomMarkers(settings.seedOf(*settings.only)).text(), counts);
    return;
  }
  for (std::size_t number = 0; number < settings.cases; ++number) {
    compareParts(RandomMarkers(settings.seedOf(number)).text(), counts);
    if (HasFailure()) FAIL() << settings.repeatHint(number);
  }
  std::cout << "whole: " << counts.whole << "\nembedded: " << counts.embedded << "\n";
  EXPECT_GE(counts.whole, settings.leastOf(kLeastValues));
  EXPECT_GE(counts.embedded, settings.leastOf(kLeastValues));
}

// The rules that the twin adds to RapidJSON.
TEST(JsonOracle, FollowsItsOwnRulesWhereRapidJsonDiffers) {
  const auto parses = [](std::u16string_view text) {
    return foundation::json::parse(text).value.has_value();
  };
  EXPECT_EQ(foundation::json::parse(u"\"\\ud800\"").value, "\xEF\xBF\xBD");
  EXPECT_EQ(foundation::json::parse(u"{\"a\":1,\"a\":2}").value,
            foundation::json::Value(foundation::json::Object{{"a", 2}}));
  EXPECT_EQ(foundation::json::parse(u"0e400").value, 0.0);
  EXPECT_FALSE(parses(u"1e400"));
  const std::u16string deepest(Lexer::kMaxDepth, u'[');
  EXPECT_TRUE(parses(deepest + std::u16string(Lexer::kMaxDepth, u']')));
  EXPECT_FALSE(parses(u"[" + deepest + std::u16string(Lexer::kMaxDepth + 1, u']')));
  EXPECT_TRUE(parses(u"[\n1]"));
  EXPECT_FALSE(foundation::json::parseEmbeddedObject(u"{\n}", 0));
}

}  // namespace
}  // namespace quenlith::oracle

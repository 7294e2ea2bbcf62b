#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <random>
#include <string>

#include "JsonTwin.hpp"
#include "RandomMarkers.hpp"
#include "fl/i18n/ustring.hpp"
#include "foundation/json/Lexer.hpp"
#include "foundation/json/parse.hpp"

namespace quenlith::oracle {
namespace {

using fl::i18n::ustring_to_utf8;
using foundation::json::Lexer;

constexpr int kTexts = 10'000;
constexpr int kLeastValues = 2'000;

// Returns the seed of the run: MARKERS_SEED, or a random one.
std::uint64_t chooseSeed() {
  const char* given = std::getenv("MARKERS_SEED");
  return given != nullptr ? std::strtoull(given, nullptr, 10) : std::random_device{}();
}

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

TEST(JsonOracle, TheParserAgreesWithRapidJson) {
  const std::uint64_t seed = chooseSeed();
  std::cout << "seed " << seed << "\n";
  RandomMarkers random(seed);
  int whole = 0;
  int embedded = 0;
  for (int round = 0; round < kTexts && !HasFailure(); ++round) {
    const std::u16string text = random.text();
    for (std::size_t at = 0; at < text.size(); ++at) {
      if (text[at] != u'{' && text[at] != u'"' && text[at] != u'[') continue;
      if (text[at] == u'{') embedded += compareEmbedded(text, at) ? 1 : 0;
      // From here to the last unit that can end the value, and one unit less.
      const std::size_t last = text.find_last_of(u"}\"]");
      for (std::size_t end = last; end <= last + 1 && end > at; ++end) {
        whole += compareWhole(std::u16string_view(text).substr(at, end - at)) ? 1 : 0;
      }
    }
  }
  std::cout << "whole: " << whole << "\nembedded: " << embedded << "\n";
  EXPECT_GE(whole, kLeastValues);
  EXPECT_GE(embedded, kLeastValues);
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

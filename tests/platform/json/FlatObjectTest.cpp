#include "foundation/json/flatObject.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "foundation/json/Lexer.hpp"
#include "foundation/json/parse.hpp"

namespace {

using foundation::json::flatObjectEnd;
using foundation::json::Lexer;
using foundation::json::Token;

// Returns where the lexer ends the object; 0 if it reports an error.
std::size_t endByTokens(const std::u16string& text) {
  Lexer lexer(text, 0, foundation::json::Space::kBlanks, foundation::json::kEmbeddedDepth);
  do {
    if (lexer.next() == Token::kError) return 0;
  } while (lexer.depth() != 0);
  return lexer.end();
}

TEST(FlatObject, EndsAfterItsBrace) {
  for (const std::u16string object :
       {u"{}", u"{ \t}", u"{\"a\":1}", u"{\"a\":-0.25,\"b\":0,\"c\":-17}", u"{\"\":\"\"}",
        u"{ \"a\" : \"b c\" , \"d\" :\ttrue }", u"{\"a\":false,\"b\":null}",
        u"{\"\xD800\":\"\xDC00\x7F\xFFFF\"}", u"{\"a\":12345678901234567890}"}) {
    EXPECT_EQ(flatObjectEnd(object, 0), object.size());
    EXPECT_EQ(flatObjectEnd(u"x" + object + u">}", 1), object.size() + 1);
    EXPECT_EQ(endByTokens(object), object.size());
  }
}

TEST(FlatObject, LeavesOtherObjectsToTheLexer) {
  for (const std::u16string object : {u"{",
                                      u"{\"a",
                                      u"{\"a\"",
                                      u"{\"a\":",
                                      u"{\"a\":1",
                                      u"{\"a\":1,",
                                      u"{\"a\":1,}",
                                      u"{,}",
                                      u"{\"a\" 1}",
                                      u"{\"a\":}",
                                      u"{a:1}",
                                      u"{\"a\":01}",
                                      u"{\"a\":1.}",
                                      u"{\"a\":.5}",
                                      u"{\"a\":-}",
                                      u"{\"a\":+1}",
                                      u"{\"a\":1e2}",
                                      u"{\"a\":tru}",
                                      u"{\"a\":nul}",
                                      u"{\"a\":fals",
                                      u"{\"a\":truE}",
                                      u"{\"a\":\"\\n\"}",
                                      u"{\"a\":\"\n\"}",
                                      u"{\"\\u0041\":1}",
                                      u"{\"a\":[]}",
                                      u"{\"a\":{}}",
                                      u"{\n}",
                                      u"{\"a\":1\n}",
                                      u"{\"a\":123456789012345678901}",
                                      u"{\"a\":0.123456789012345678901}",
                                      u"{\"a\":1 \"b\":2}",
                                      u"{\"a\":\"b\x1F\"}"}) {
    EXPECT_EQ(flatObjectEnd(object, 0), 0U);
    EXPECT_EQ(flatObjectEnd(u"xy" + object, 2), 2U);
  }
}

TEST(FlatObject, EndsWhereTheLexerEndsIt) {
  constexpr std::u16string_view kUnits = u"{}\"\":,:,\"a1230.-e tfn[]\\\n";
  const std::u16string pieces[] = {u"\"a\":", u"\"k\" : ", u"true", u"null",
                                   u"12",     u"-0.5",     u",",    u"}"};
  std::mt19937 random(20260101);
  std::size_t flat = 0;
  for (int round = 0; round < 200000; ++round) {
    std::u16string text = u"{";
    for (unsigned part = random() % 8; part > 0; --part) {
      text += random() % 3 == 0 ? std::u16string(1, kUnits[random() % kUnits.size()])
                                : pieces[random() % std::size(pieces)];
    }
    if (random() % 2 == 0) text += u"}";
    const std::size_t end = flatObjectEnd(text, 0);
    if (end == 0) continue;
    ++flat;
    ASSERT_EQ(end, endByTokens(text));
  }
  EXPECT_GT(flat, 1000U);
}

}  // namespace

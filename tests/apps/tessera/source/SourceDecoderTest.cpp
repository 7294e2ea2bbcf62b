#include "tessera/source/SourceDecoder.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

using tessera::source::SourceDecoder;

/// Decodes `bytes` as read from a pipe whose writer pauses at `cut`.
std::u16string decodeInTwoPieces(std::string_view bytes, std::size_t cut) {
  SourceDecoder decoder("f", 0);
  const std::size_t used = decoder.append(bytes.substr(0, cut));
  return decoder.finish(bytes.substr(used));
}

TEST(SourceDecoder, DropsAByteOrderMarkThatArrivesInPieces) {
  for (std::size_t cut = 0; cut <= 4; ++cut) {
    EXPECT_EQ(decodeInTwoPieces("\xEF\xBB\xBF"
                                "a\xEF\xBB\xBF",
                                cut),
              u"a\uFEFF")
        << cut;
  }
}

TEST(SourceDecoder, JoinsALineEndingThatArrivesInPieces) {
  for (std::size_t cut = 0; cut <= 6; ++cut) {
    EXPECT_EQ(decodeInTwoPieces("a\r\n\r\rb", cut), u"a\n\r\rb") << cut;
  }
}

TEST(SourceDecoder, ReturnsHowManyBytesItUsed) {
  SourceDecoder decoder("f", 0);
  EXPECT_EQ(decoder.append("ab\xF0\x9F\x8F"), 2u);
  EXPECT_EQ(decoder.append("\xF0\x9F\x8F\x86\xC3"), 4u);
  EXPECT_EQ(decoder.finish("\xC3\xA4"), u"ab\U0001F3C6\u00E4");
}

}  // namespace

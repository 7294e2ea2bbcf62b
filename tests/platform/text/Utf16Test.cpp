#include "fl/i18n/utf16.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "TextTwin.hpp"

namespace fl::i18n {
namespace {

TEST(ConvertUtf16, AgreesWithIcuAndStaysInItsBuffer) {
  const std::uint64_t seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937_64 random(seed);
  for (int round = 0; round < 50'000; ++round) {
    const std::u16string text = twin::randomUnits(random);
    std::string buffer(text.size() * kMaxUtf8BytesPerUnit + 1, '\x5A');
    const std::size_t length = convertUtf16(text, buffer.data());
    ASSERT_EQ(buffer.back(), '\x5A');
    ASSERT_EQ(buffer.substr(0, length), twin::encodeUtf8(text));
  }
}

// Pairs across the boundary of the sixteen units read at once, and of the parts of a long text.
TEST(ConvertUtf16, KeepsPairsTogether) {
  for (std::size_t before = 0; before < 1100; ++before) {
    const std::u16string text = std::u16string(before, u'a') + u"\U0001F600z";
    std::string bytes(text.size() * kMaxUtf8BytesPerUnit, '\0');
    bytes.resize(convertUtf16(text, bytes.data()));
    ASSERT_EQ(bytes, std::string(before, 'a') + "\xF0\x9F\x98\x80z") << before;
  }
}

// Sixteen units that are all ASCII are converted at once.
TEST(ConvertUtf16, ConvertsRunsOfEveryUnit) {
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const std::u16string text(17, static_cast<char16_t>(unit));
    std::string bytes(text.size() * kMaxUtf8BytesPerUnit, '\0');
    bytes.resize(convertUtf16(text, bytes.data()));
    ASSERT_EQ(bytes, twin::encodeUtf8(text)) << unit;
  }
}

// Surrogates before and at the place where a long text is cut, which is after 512 or another such
// number of units.
TEST(AppendUtf8, SurrogatesAroundTheCutAgreeWithIcu) {
  const std::u16string pair = u"\U0001F600";
  const std::u16string high = pair.substr(0, 1);
  const std::vector<std::u16string> cases{high + pair, pair + high, pair + pair, pair + high + pair,
                                          high + high + pair};
  for (const std::u16string& surrogates : cases) {
    for (std::size_t before = 0; before < 1100; ++before) {
      std::u16string text(before, u'\u20AC');
      text.append(surrogates).append(600, u'b');
      std::string bytes;
      appendUtf8(bytes, text);
      ASSERT_EQ(bytes, twin::encodeUtf8(text)) << before;
    }
  }
}

TEST(AppendUtf8, AppendsToTheText) {
  std::string output = "x = ";
  appendUtf8(output, u"\u00E9");
  appendUtf8(output, u"");
  EXPECT_EQ(output, "x = \xC3\xA9");
}

}  // namespace
}  // namespace fl::i18n

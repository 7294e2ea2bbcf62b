#include "fl/i18n/utf8.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "TextTwin.hpp"
#include "support/FailingAllocations.hpp"

namespace fl::i18n {
namespace {

constexpr char16_t kGuard = 0x5A5A;

struct Converted {
  Utf8Conversion conversion;
  std::u16string text;
  bool isGuardIntact;
};

// Converts into a buffer of exactly the required size, with a guard unit after it.
Converted convert(std::string_view bytes) {
  std::u16string buffer(bytes.size() + 1, kGuard);
  const Utf8Conversion conversion = convertUtf8(bytes, buffer.data());
  return {conversion, buffer.substr(0, conversion.length), buffer.back() == kGuard};
}

TEST(ConvertUtf8, ReportsTheFirstIllFormedSequence) {
  EXPECT_EQ(convert("fine \xE2\x82\xAC").conversion.firstInvalid, std::nullopt);
  EXPECT_EQ(convert("").conversion.firstInvalid, std::nullopt);
  EXPECT_EQ(convert("\xFF").conversion.firstInvalid, 0U);
  EXPECT_EQ(convert("ab\xE2\x82\xAC\xE2\x82 \xFF").conversion.firstInvalid, 5U);
}

TEST(ConvertUtf8, AgreesWithIcu) {
  const std::uint64_t seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937_64 random(seed);
  for (int round = 0; round < 50'000; ++round) {
    const std::string bytes = twin::randomBytes(random);
    const Converted real = convert(bytes);
    const twin::Decoded expected = twin::decodeUtf8(bytes);
    ASSERT_EQ(real.text, expected.text) << testing::PrintToString(bytes);
    ASSERT_EQ(real.conversion.firstInvalid, expected.firstInvalid) << testing::PrintToString(bytes);
    ASSERT_TRUE(real.isGuardIntact) << testing::PrintToString(bytes);
    ASSERT_EQ(findInvalidUtf8(bytes), expected.firstInvalid) << testing::PrintToString(bytes);
  }
}

// A damaged byte at each position of the blocks that are read at once.
TEST(FindInvalidUtf8, FindsOneBadByteAnywhere) {
  for (std::size_t size = 1; size < 70; ++size) {
    EXPECT_EQ(findInvalidUtf8(std::string(size, 'x')), std::nullopt);
    for (std::size_t at = 0; at < size; ++at) {
      std::string bytes(size, 'x');
      bytes[at] = '\x80';
      ASSERT_EQ(findInvalidUtf8(bytes), at) << size;
    }
  }
}

TEST(ConvertUtf8, DoesNotAllocate) {
  const std::string bytes = std::string(5000, 'a') + "\xE2\x82\xAC\xFF";
  std::u16string buffer(bytes.size(), u'\0');
  const std::size_t before = quenlith::test::allocationCount();
  convertUtf8(bytes, buffer.data());
  findInvalidUtf8(bytes);
  EXPECT_EQ(quenlith::test::allocationCount(), before);
}

}  // namespace
}  // namespace fl::i18n

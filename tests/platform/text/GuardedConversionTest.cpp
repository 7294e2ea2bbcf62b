// Conversions between buffers that inaccessible pages surround.

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "TextTwin.hpp"
#include "fl/i18n/ustring.hpp"
#include "fl/i18n/utf16.hpp"
#include "fl/i18n/utf8.hpp"
#include "support/GuardedMemory.hpp"

namespace fl::i18n {
namespace {

using quenlith::test::GuardedMemory;

constexpr std::size_t kMostInputUnits = 4096;

TEST(GuardedConversion, StaysWithinTheBounds) {
  const std::uint64_t seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937_64 random(seed);
  const GuardedMemory input(kMostInputUnits);
  const GuardedMemory output(kMostInputUnits * kMaxUtf8BytesPerUnit);
  for (int round = 0; round < 20'000; ++round) {
    const std::string bytes = twin::randomBytes(random);
    for (const auto& text : {input.copyToBegin<char>(bytes), input.copyToEnd<char>(bytes)}) {
      const std::u16string expected = utf8_to_ustring(text);
      const auto conversion = convertUtf8(text, output.lastUnits<char16_t>(bytes.size()));
      ASSERT_EQ(conversion.length, expected.size());
      ASSERT_EQ(findInvalidUtf8(text), conversion.firstInvalid);
    }
    const std::u16string units = twin::randomUnits(random);
    for (const auto& text :
         {input.copyToBegin<char16_t>(units), input.copyToEnd<char16_t>(units)}) {
      const std::string expected = ustring_to_utf8(text);
      char* const target = output.lastUnits<char>(units.size() * kMaxUtf8BytesPerUnit);
      ASSERT_EQ(convertUtf16(text, target), expected.size());
    }
  }
}

}  // namespace
}  // namespace fl::i18n

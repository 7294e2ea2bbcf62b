#include "fl/i18n/KeyedHash.hpp"

#include <gtest/gtest.h>

#include <string_view>

namespace {

using fl::i18n::KeyedHash;

TEST(KeyedHash, IsThePublishedFunction) {
  // The first of the test vectors that are published with SipHash-1-3: of the empty text.
  KeyedHash hash({0x0706050403020100, 0x0f0e0d0c0b0a0908});
  EXPECT_EQ(hash.finish(), 0xabac0158050fc4dcu);
}

TEST(KeyedHash, DependsOnTheKeyAndOnWhereATextEnds) {
  const auto hashWith = [](KeyedHash::Key key, std::string_view first, std::string_view second) {
    KeyedHash hash(key);
    hash.add(first);
    hash.add(second);
    return hash.finish();
  };
  EXPECT_EQ(hashWith({1, 2}, "ab", "c"), hashWith({1, 2}, "ab", "c"));
  EXPECT_NE(hashWith({1, 2}, "ab", "c"), hashWith({1, 2}, "a", "bc"));
  EXPECT_NE(hashWith({1, 2}, "ab", "c"), hashWith({1, 3}, "ab", "c"));
  EXPECT_NE(hashWith({1, 2}, "ab", "c"), hashWith({2, 2}, "ab", "c"));
  EXPECT_NE(hashWith({1, 2}, "ab", std::string_view("c\0", 2)), hashWith({1, 2}, "ab", "c"));
}

TEST(KeyedHash, HasOneKeyInAProcess) {
  const KeyedHash::Key first = KeyedHash::keyOfProcess();
  EXPECT_EQ(KeyedHash::keyOfProcess(), first);
  // Not a key that can be guessed; a drawn one has a zero word once in 2^63 processes.
  EXPECT_NE(first[0], 0u);
  EXPECT_NE(first[1], 0u);
}

}  // namespace

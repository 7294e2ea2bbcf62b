#include "quenlith/syntax/openingSearch.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace quenlith::syntax {
namespace {

// Every search that this processor can run.
std::vector<OpeningSearch> searches() {
  std::vector<OpeningSearch> found{&findOpening, openingSearch(VectorWidth::kNone),
                                   openingSearch(VectorWidth::k128)};
  if (widestVectors() == VectorWidth::k256) {
    found.push_back(openingSearch(VectorWidth::k256));
  }
  return found;
}

// The pair at every place of texts of every size up to some blocks, alone and among halves of
// itself.
TEST(OpeningSearch, FindsThePairAnywhere) {
  for (const OpeningSearch search : searches()) {
    for (const std::u16string filler : {u"x", u"<", u"@", u"@<"}) {
      for (std::size_t size = 0; size < 140; ++size) {
        std::u16string text;
        while (text.size() < size) {
          text += filler;
        }
        text.resize(size);
        ASSERT_EQ(search(text, 0), text.find(u"<@")) << size;
        for (std::size_t at = 0; at + 1 < size; ++at) {
          std::u16string marked = text;
          marked.replace(at, 2, u"<@");
          ASSERT_EQ(search(marked, 0), marked.find(u"<@")) << size << " " << at;
        }
      }
    }
  }
}

TEST(OpeningSearch, StartsWhereItIsTold) {
  std::u16string text(100, u'x');
  text.replace(10, 2, u"<@").replace(90, 2, u"<@");
  for (const OpeningSearch search : searches()) {
    for (std::size_t from = 0; from <= text.size(); ++from) {
      ASSERT_EQ(search(text, from), text.find(u"<@", from)) << from;
    }
  }
}

TEST(OpeningSearch, AllAgreeOnRandomTexts) {
  const std::uint64_t seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937_64 random(seed);
  constexpr std::u16string_view kUnits = u"<@<@xxxxxx\u3C40\u403C\uFF3C";
  for (int round = 0; round < 20'000; ++round) {
    std::u16string text;
    for (std::size_t left = random() % 150; left > 0; --left) {
      text += random() % 8 == 0 ? kUnits[random() % kUnits.size()] : u'x';
    }
    const std::size_t from = random() % (text.size() + 1);
    for (const OpeningSearch search : searches()) {
      ASSERT_EQ(search(text, from), text.find(u"<@", from));
    }
  }
}

}  // namespace
}  // namespace quenlith::syntax

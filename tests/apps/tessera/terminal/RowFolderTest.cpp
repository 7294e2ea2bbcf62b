#include "tessera/terminal/RowFolder.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using tessera::terminal::MarkedPart;
using tessera::terminal::Row;
using tessera::terminal::RowFolder;
using tessera::terminal::RowSink;
using tessera::terminal::RowSpan;

/// Collects rows as text: marked text is in brackets, with a "." where its part ends.
class Rows final : public RowSink {
 public:
  Rows(RowFolder::Limits limits, std::u16string_view text, std::vector<MarkedPart> parts = {}) {
    RowFolder(limits, *this).fold(text, parts);
  }

  std::vector<std::string> all;

 private:
  void takeRow(const Row& row) override {
    std::string shown;
    std::size_t byte = 0;
    std::size_t column = 0;
    for (const RowSpan& span : row.spans) {
      EXPECT_EQ(span.beginByte, byte);
      EXPECT_EQ(span.beginColumn, column);
      byte = span.endByte;
      column = span.endColumn;
      const auto text = row.text.substr(span.beginByte, span.endByte - span.beginByte);
      const bool isMarked = span.part != RowSpan::kNoPart;
      if (isMarked) shown += std::to_string(span.part) + "[";
      shown += text;
      if (isMarked) shown += span.endsPart ? ".]" : "]";
    }
    EXPECT_EQ(byte, row.text.size());
    EXPECT_EQ(column, row.columns);
    all.push_back(shown);
  }
};

using Texts = std::vector<std::string>;

TEST(RowFolder, AnEmptyLineIsOneRow) {
  EXPECT_EQ(Rows({5, 5}, u"").all, Texts{""});
}

TEST(RowFolder, ARowEndsWhereItIsFull) {
  EXPECT_EQ(Rows({5, 3}, u"1234567890").all, (Texts{"12345", "678", "90"}));
  EXPECT_EQ(Rows({5, 3}, u"12345").all, Texts{"12345"});
}

TEST(RowFolder, ARowEndsAfterABlankOrACommaInItsSecondHalf) {
  EXPECT_EQ(Rows({8, 8}, u"12345,7890").all, (Texts{"12345,", "7890"}));
  EXPECT_EQ(Rows({8, 8}, u"1234, 7890").all, (Texts{"1234, ", "7890"}));
  EXPECT_EQ(Rows({8, 8}, u"12345 7890").all, (Texts{"12345 ", "7890"}));
  EXPECT_EQ(Rows({8, 8}, u"1234567 90").all, (Texts{"1234567 ", "90"}));
  EXPECT_EQ(Rows({8, 8}, u"123 567890").all, (Texts{"123 5678", "90"}));
}

TEST(RowFolder, TheRestOfARowFitsIntoANarrowerOne) {
  EXPECT_EQ(Rows({20, 4}, u"12345678901 345678901234").all,
            (Texts{"12345678901 34567890", "1234"}));
}

TEST(RowFolder, WideCharactersAreNotSplit) {
  EXPECT_EQ(Rows({3, 3}, u"中中").all, (Texts{"中", "中"}));
  EXPECT_EQ(Rows({4, 4}, u"ab😀c").all, (Texts{"ab😀", "c"}));
  EXPECT_EQ(Rows({2, 2}, u"e\u0301e\u0301e\u0301").all, (Texts{"e\u0301e\u0301", "e\u0301"}));
}

TEST(RowFolder, WhatIsWiderThanARowIsBroken) {
  EXPECT_EQ(Rows({5, 5}, u"\u200B").all, (Texts{"<U+20", "0B>"}));
  EXPECT_EQ(Rows({5, 5}, u"\t1").all, (Texts{"     ", "   1"}));
  // One cluster: three consonants of a syllable.
  EXPECT_EQ(Rows({3, 3}, u"\u1112\u1112\u1112a").all, (Texts{"\u1112", "\u1112",
                                                             "\u1112"
                                                             "a"}));
}

TEST(RowFolder, MarkedTextIsInSpans) {
  EXPECT_EQ(Rows({8, 8}, u"ab cd ef gh", {{1, 4}, {4, 8}, {9, 10}}).all,
            (Texts{"a0[b c.]1[d ]", "1[ef.] 2[g.]h"}));
  EXPECT_EQ(Rows({4, 4}, u"abcdef", {{2, 6}}).all, (Texts{"ab0[cd]", "0[ef.]"}));
}

TEST(RowFolder, APartWithinACharacterHasNoText) {
  EXPECT_EQ(Rows({9, 9}, u"e\u0301x", {{1, 2}, {2, 2}, {2, 3}}).all, (Texts{"e\u0301"
                                                                            "2[x.]"}));
}

}  // namespace

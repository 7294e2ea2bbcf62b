// Texts between inaccessible pages.

#include <gtest/gtest.h>

#include <string>

#include "quenlith/syntax/MarkerCandidate.hpp"
#include "quenlith/syntax/markers.hpp"
#include "support/GuardedMemory.hpp"

namespace quenlith::syntax {
namespace {

using quenlith::test::GuardedMemory;

constexpr std::u16string_view kText =
    u"x = 1  ## <@task#\"an id\" [1, 22] {\"a\": \"\\n plain text\", \"b\": [1.5, true]}> "
    u"// <@appendix> -- <@text:anchor#here> /** <@task#a> **/(*<@text>*)<!-- <@output> "
    u"-->{-<@task>-} "
    u"rem <@text> ! <@task> REM";

// The prefixes and suffixes of the text meet the guard in each part of a marker.
TEST(GuardedText, IsScannedWithinItsBounds) {
  const GuardedMemory memory(kText.size() * sizeof(char16_t));
  for (std::size_t size = 0; size <= kText.size(); ++size) {
    for (const auto cut : {kText.substr(0, size), kText.substr(kText.size() - size)}) {
      const std::u16string copy(cut);
      const std::size_t damaged = findDamagedMarkers(copy).size();
      for (const auto& text : {memory.copyToBegin(cut), memory.copyToEnd(cut)}) {
        ASSERT_EQ(findDamagedMarkers(text).size(), damaged) << size;
        ASSERT_EQ(isAppendixLine(text), isAppendixLine(copy)) << size;
        ASSERT_EQ(findMarkerCandidates(text).size(), findMarkerCandidates(copy).size()) << size;
      }
    }
  }
}

// What is before and after the comment of an appendix line is read too.
TEST(GuardedText, AppendixLineIsRecognizedWithinItsBounds) {
  for (const std::u16string_view text :
       {u"# <@appendix>", u" # <@appendix>", u"/* <@appendix> */ ", u"<!-- <@appendix> -->"}) {
    const GuardedMemory memory(text.size() * sizeof(char16_t));
    for (const auto& copy : {memory.copyToBegin(text), memory.copyToEnd(text)}) {
      EXPECT_TRUE(isAppendixLine(copy));
      EXPECT_TRUE(findMarkerCandidates(copy).empty());
    }
  }
}

}  // namespace
}  // namespace quenlith::syntax

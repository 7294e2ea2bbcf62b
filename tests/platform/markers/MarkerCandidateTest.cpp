#include "quenlith/syntax/MarkerCandidate.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "fl/i18n/ustring.hpp"
#include "quenlith/syntax/markers.hpp"

namespace quenlith::syntax {
namespace {

using fl::i18n::ustring;
using fl::i18n::ustring_to_utf8;

struct DamageCase {
  ustring text;
  std::uint64_t position;
  std::uint64_t problemPosition;
  MarkerProblem problem;
};

// Each text contains one damaged marker.
void expectDamages(const std::vector<DamageCase>& cases) {
  for (const auto& [text, position, problemPosition, problem] : cases) {
    const auto damaged = findDamagedMarkers(text);
    ASSERT_EQ(damaged.size(), 1U) << ustring_to_utf8(text);
    EXPECT_EQ(damaged[0].position, position) << ustring_to_utf8(text);
    EXPECT_EQ(damaged[0].opening, text.find(u"<@")) << ustring_to_utf8(text);
    EXPECT_EQ(damaged[0].problemPosition, problemPosition) << ustring_to_utf8(text);
    EXPECT_EQ(damaged[0].problem, problem)
        << ustring_to_utf8(text) << ": " << describe(damaged[0].problem);
  }
}

TEST(DamagedMarkers, HaveTheFirstProblemBetweenTheirBrackets) {
  using enum MarkerProblem;
  expectDamages({
      {u"# <@>", 0, 4, kMissingElement},
      {u"# <@ task>", 0, 4, kMissingElement},
      {u"# <@", 0, 4, kMissingElement},
      {u"# <@tsak>", 0, 4, kUnknownElement},
      {u"# <@Task#a [1,2] {}>", 0, 4, kUnknownElement},
      {u"# <@tasks#\"a>", 0, 4, kUnknownElement},
      {u"# <@task:>", 0, 9, kMissingType},
      {u"# <@task#>", 0, 9, kMissingId},
      {u"# <@task#\"a>", 0, 12, kBadQuotedId},
      {u"# <@task#\"\\x\">", 0, 10, kBadQuotedId},
      {u"# <@task[1,2]>", 0, 8, kMissingBlankBeforeRange},
      {u"# <@task [-1,2]>", 0, 10, kRangeNumberMissing},
      {u"# <@task [1,x]>", 0, 12, kRangeNumberMissing},
      {u"# <@task [1;2]>", 0, 11, kRangeCommaMissing},
      {u"# <@task [1]>", 0, 11, kRangeCommaMissing},
      {u"# <@task [1,2}>", 0, 13, kRangeBracketMissing},
      {u"# <@task{}>", 0, 8, kMissingBlankBeforeData},
      {u"# <@task [1,2]{}>", 0, 14, kMissingBlankBeforeData},
      {u"# <@task {\"a\" 1}>", 0, 14, kBadData},
      {u"x # <@task", 2, 10, kMissingEnd},
      {u"# <@task x>", 0, 9, kMissingEnd},
      {u"# <@task {} [1,2]>", 0, 12, kMissingEnd},
      {u"# <@task\n>", 0, 8, kMissingEnd},
      // Before a problem of the comment.
      {u"<@task#>", 0, 7, kMissingId},
      {u"/ <@task [1]>", 0, 11, kRangeCommaMissing},
      {u"REM<@task", 0, 9, kMissingEnd},
      {u"/* <@task#> */", 0, 10, kMissingId},
      {u"/* <@task [1,2}", 0, 14, kRangeBracketMissing},
  });
}

TEST(DamagedMarkers, HaveAProblemOfTheirComment) {
  using enum MarkerProblem;
  expectDamages({
      {u"<@task>", 0, 0, kMissingLeader},
      {u"x = 1 <@task>", 6, 6, kMissingLeader},
      {u"#\n<@task>", 2, 2, kMissingLeader},
      {u"xREM <@task>", 5, 5, kMissingLeader},
      {u"/ <@task>", 0, 0, kLeaderTooShort},
      {u"x /<@task>", 2, 2, kLeaderTooShort},
      {u"- <@task>", 0, 0, kLeaderTooShort},
      {u" * <@task>", 1, 1, kLeaderTooShort},
      {u"** <@task> */", 0, 0, kLeaderTooShort},
      {u"<!- <@task> ->", 0, 0, kLeaderTooShort},
      {u"x REM<@task>", 2, 5, kMissingBlankAfterRemark},
      {u"rem<@task>", 0, 3, kMissingBlankAfterRemark},
      {u"/* <@task>", 0, 10, kMissingCloser},
      {u"x /* <@task>  x */", 2, 14, kMissingCloser},
      {u"/* <@task> ** /", 0, 11, kMissingCloser},
      {u"(* <@task> */", 0, 11, kMissingCloser},
      {u"<!-- <@task> ->", 0, 13, kMissingCloser},
      {u"{- <@task> --}", 0, 11, kMissingCloser},
  });
}

TEST(DamagedMarkers, AreAppendixLinesWithOtherText) {
  using enum MarkerProblem;
  expectDamages({
      {u"# <@appendix> x", 0, 14, kBadAppendixLine},
      {u"x\ny  # <@appendix>\nz", 5, 2, kBadAppendixLine},
      {u"# <@appendix#a>", 0, 12, kBadAppendixLine},
      {u"# <@appendix >", 0, 12, kBadAppendixLine},
      {u"/* <@appendix> */ */", 0, 18, kBadAppendixLine},
      {u"/* <@appendix>", 0, 14, kMissingCloser},
      {u"# <@appendix", 0, 12, kMissingEnd},
      {u"<@appendix>", 0, 0, kMissingLeader},
  });
  for (const ustring text :
       {u"# <@appendix>", u" # <@appendix>", u"\t # <@appendix>", u"x\n# <@appendix>",
        u"x\n # <@appendix>", u"x\n \t/* <@appendix> */ \ny"}) {
    EXPECT_TRUE(findMarkerCandidates(text).empty()) << ustring_to_utf8(text);
  }
}

TEST(DamagedMarkers, AreEveryOpeningThatIsNotInAMarker) {
  const auto damaged = findDamagedMarkers(
      u"a < @ <@ # <@task#\"# <@text#ok> /* <@out {\"a\":\"# <@task#ok {\"b\":\"<@\"}>\"}");
  std::vector<std::uint64_t> openings;
  for (const auto& candidate : damaged) openings.push_back(candidate.opening);
  EXPECT_EQ(openings, (std::vector<std::uint64_t>{6, 11, 35}));
}

TEST(DamagedMarkers, KeepWhetherTheirBodyIsWhole) {
  const auto bodyEnd = [](const ustring& text) { return findDamagedMarkers(text).at(0).bodyEnd; };
  EXPECT_EQ(bodyEnd(u"<@task#a [1,2]> x"), 15U);
  EXPECT_EQ(bodyEnd(u"# <@widget {}> x"), 14U);
  EXPECT_EQ(bodyEnd(u"/* <@task> x"), 10U);
  EXPECT_EQ(bodyEnd(u"# <@widget {> x"), std::nullopt);
  EXPECT_EQ(bodyEnd(u"# <@task"), std::nullopt);
}

TEST(DamagedMarkers, HaveNothingOfTheCandidateBefore) {
  const auto damaged = findDamagedMarkers(u"<@task:kind#a [1,2] {\"b\":1}> # <@text");
  ASSERT_EQ(damaged.size(), 2U);
  EXPECT_EQ(damaged[0].bodyEnd, 28U);
  EXPECT_EQ(damaged[1].bodyEnd, std::nullopt);
  EXPECT_EQ(damaged[1].type, u"");
  EXPECT_EQ(damaged[1].data, u"");
}

TEST(DamagedMarkers, KnowWhetherTheyFollowAMarker) {
  const auto follows = [](const ustring& text) {
    return findDamagedMarkers(text).at(0).followsMarker;
  };
  EXPECT_TRUE(follows(u"# <@task><@text>"));
  EXPECT_TRUE(follows(u"# <@task> \t<@text>"));
  EXPECT_TRUE(follows(u"/* <@task> *// <@text>"));
  EXPECT_TRUE(follows(u"# <@task> # <@text"));
  EXPECT_FALSE(follows(u"<@text>"));
  EXPECT_FALSE(follows(u" <@text> # <@task>"));
  EXPECT_FALSE(follows(u"# <@task> x <@text>"));
  EXPECT_FALSE(follows(u"# <@task>\n<@text>"));
  EXPECT_FALSE(findDamagedMarkers(u"# <@task> <@text <@text>").at(1).followsMarker);
}

TEST(DamagedMarkers, HaveTheReasonOfAJsonProblem) {
  const auto reason = [](const ustring& text) {
    return std::string(findDamagedMarkers(text).at(0).jsonReason);
  };
  EXPECT_EQ(reason(u"# <@task#\"a>"), "the text ends too early");
  EXPECT_EQ(reason(u"# <@task#\"\\x\">"), "there is no such escape");
  EXPECT_EQ(reason(u"# <@task {\"a\" 1}>"), "a ':' is missing");
  EXPECT_EQ(reason(u"# <@task x>"), "");
}

TEST(MarkerCandidates, HaveTheirPartsAsWritten) {
  const ustring text = u"x /* <@task:kind#\"an \\u0069d\" [1, 22]\t{\"a\": 1} > */ y";
  const auto candidates = findMarkerCandidates(text);
  ASSERT_EQ(candidates.size(), 1U);
  const MarkerCandidate& marker = candidates[0];
  EXPECT_EQ(marker.problem, MarkerProblem::kNone);
  EXPECT_EQ(marker.comment, CommentForm::kSlashStar);
  EXPECT_EQ(marker.position, 2U);
  EXPECT_EQ(marker.opening, 5U);
  EXPECT_EQ(marker.bodyEnd, text.find(u"> *") + 1);
  EXPECT_EQ(marker.problemPosition, text.size() - 2);
  EXPECT_EQ(marker.element, u"task");
  EXPECT_EQ(marker.type, u"kind");
  EXPECT_EQ(marker.id, u"\"an \\u0069d\"");
  EXPECT_EQ(marker.range, u"[1, 22]");
  EXPECT_EQ(marker.data, u"{\"a\": 1}");
  EXPECT_EQ(marker.element.data(), text.data() + 7);
  EXPECT_EQ(marker.range.data(), text.data() + text.find(u"[1"));
}

TEST(MarkerCandidates, HaveThePartsBeforeTheProblem) {
  const auto damaged = findDamagedMarkers(u"# <@task:kind#a [1,2] {\"a\":}>").at(0);
  EXPECT_EQ(damaged.element, u"task");
  EXPECT_EQ(damaged.type, u"kind");
  EXPECT_EQ(damaged.id, u"a");
  EXPECT_EQ(damaged.range, u"[1,2]");
  EXPECT_EQ(damaged.data, u"");
}

TEST(MarkerCandidates, HaveTheFormOfTheirComment) {
  using enum CommentForm;
  const auto form = [](const ustring& text) { return findMarkerCandidates(text).at(0).comment; };
  EXPECT_EQ(form(u"<@task>"), kNone);
  EXPECT_EQ(form(u"/<@task>"), kTooShort);
  EXPECT_EQ(form(u"REM<@task>"), kUnspacedRemark);
  EXPECT_EQ(form(u"#<@task>"), kLine);
  EXPECT_EQ(form(u"rem <@task>"), kLine);
  EXPECT_EQ(form(u"/*<@task"), kSlashStar);
  EXPECT_EQ(form(u"(*<@task>*)"), kParenthesisStar);
  EXPECT_EQ(form(u"<!--<@task>-->"), kAngleBracket);
  EXPECT_EQ(form(u"{-<@task>"), kBrace);
}

TEST(MarkerProblem, HasADescriptionThatNoOtherHas) {
  std::set<std::string> descriptions;
  const auto last = static_cast<unsigned>(MarkerProblem::kBadAppendixLine);
  for (unsigned number = 0; number <= last; ++number) {
    const auto problem = static_cast<MarkerProblem>(number);
    const std::string description = describe(problem);
    EXPECT_EQ(description.empty(), problem == MarkerProblem::kNone) << number;
    EXPECT_TRUE(descriptions.insert(description).second) << description;
  }
}

}  // namespace
}  // namespace quenlith::syntax

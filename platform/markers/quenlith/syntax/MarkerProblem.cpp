#include "quenlith/syntax/MarkerProblem.hpp"

namespace quenlith::syntax {

const char* describe(MarkerProblem problem) noexcept {
  switch (problem) {
    case MarkerProblem::kNone:
      break;
    case MarkerProblem::kMissingElement:
      return "the element is missing after \"<@\"";
    case MarkerProblem::kUnknownElement:
      return "there is no such element";
    case MarkerProblem::kMissingType:
      return "the type is missing after ':'";
    case MarkerProblem::kMissingId:
      return "the id is missing after '#'";
    case MarkerProblem::kBadQuotedId:
      return "the quoted id is not a JSON string";
    case MarkerProblem::kMissingBlankBeforeRange:
      return "a blank is missing before the range";
    case MarkerProblem::kRangeNumberMissing:
      return "a number is missing in the range";
    case MarkerProblem::kRangeCommaMissing:
      return "a ',' is missing in the range";
    case MarkerProblem::kRangeBracketMissing:
      return "a ']' is missing after the range";
    case MarkerProblem::kMissingBlankBeforeData:
      return "a blank is missing before the data";
    case MarkerProblem::kBadData:
      return "the data is not a JSON object";
    case MarkerProblem::kMissingEnd:
      return "a '>' is missing";
    case MarkerProblem::kMissingLeader:
      return "the characters that begin a comment are missing before \"<@\"";
    case MarkerProblem::kLeaderTooShort:
      return "the characters before \"<@\" do not begin a comment";
    case MarkerProblem::kMissingBlankAfterRemark:
      return "a blank is missing after the comment word";
    case MarkerProblem::kMissingCloser:
      return "the end of the block comment is missing after the marker";
    case MarkerProblem::kBadAppendixLine:
      return "the line of \"<@appendix>\" contains something else";
  }
  return "";
}

}  // namespace quenlith::syntax

#include "tessera/check/suspects/describeProblem.hpp"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "fl/i18n/ustring.hpp"
#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/scan/BlockComments.hpp"
#include "tessera/check/scan/commentEnd.hpp"
#include "tessera/check/scan/markerText.hpp"
#include "tessera/check/suspects/SuspectWriter.hpp"
#include "tessera/check/suspects/findRepair.hpp"
#include "tessera/check/suspects/isIntended.hpp"
#include "tessera/check/suspects/likeness.hpp"

namespace tessera::check::suspects {

using namespace scan;
namespace {

using namespace std::string_view_literals;
using namespace catalogue::forms;
using quenlith::syntax::CommentForm;
using quenlith::syntax::MarkerProblem;

/// Writes the diagnostic of one text.
class ProblemWriter : SuspectWriter {
 public:
  ProblemWriter(const FoundMarker& found, std::uint64_t end, const FoundMarker* before,
                std::optional<std::u16string_view> nextLine)
      : SuspectWriter(found, end, nextLine), before(before) {}

  Suspect write() {
    suspect.element = parts.element;
    addId(found.id);
    dispatch();
    return std::move(suspect);
  }

 private:
  using enum catalogue::DiagnosticKind;

  void dispatch() {
    switch (parts.problem) {
      case MarkerProblem::kMissingElement:
        return writeMissingElement();
      case MarkerProblem::kUnknownElement:
        return writeUnknownElement();
      case MarkerProblem::kMissingType:
        return reportRepairable(kMissingType, 0, {});
      case MarkerProblem::kMissingId:
        return writeMissingId();
      case MarkerProblem::kBadQuotedId:
        return writeQuotedId();
      case MarkerProblem::kMissingBlankBeforeRange:
        return writeMissingBlank("range");
      case MarkerProblem::kMissingBlankBeforeData:
        return writeMissingBlank("data");
      case MarkerProblem::kRangeNumberMissing:
      case MarkerProblem::kRangeCommaMissing:
      case MarkerProblem::kRangeBracketMissing:
        return writeRange();
      case MarkerProblem::kBadData:
        return writeData();
      case MarkerProblem::kMissingEnd:
        return writeMissingEnd();
      case MarkerProblem::kMissingCloser:
        return writeMissingCloser();
      case MarkerProblem::kBadAppendixLine:
        return report(kInvalidAppendixLine, 0, found.span(), {});
      default:
        return writeMissingLeader();
    }
  }

  void writeMissingElement() {
    const std::u16string_view written = writtenElement(found);
    const std::uint64_t begin = parts.opening + 2;
    if (isBlankFrom(begin)) return writeCutOffElement(written);
    if (line[begin] == u'@') return writeRepeatedSign();
    if (!similarElement(written).empty()) return writeBrokenElement(written);
    const std::uint64_t element =
        std::min<std::uint64_t>(line.find_first_not_of(u" \t", begin), end);
    if (element == begin)
      return report(kMissingElement, kElementAbsent, found.spanOf(parts.opening, begin), {});
    const std::u16string_view rest = line.substr(element);
    const auto nameEnd =
        static_cast<std::size_t>(std::ranges::find_if_not(rest, isWordUnit) - rest.begin());
    suspect.element = rest.substr(0, nameEnd);
    if (nameEnd < rest.size() && rest[nameEnd] == u'#') addId(nameAt(element + nameEnd + 1));
    report(kMissingElement, kElementAfterBlank, found.spanOf(begin, element),
           {quoted(suspect.element)});
    fixBy({begin, element - begin, u""});
  }

  bool isBlankFrom(std::uint64_t position) const {
    return line.find_first_not_of(u" \t", position) == line.npos;
  }

  void writeRepeatedSign() {
    const std::uint64_t second = parts.opening + 2;
    report(kIncompleteOpening, kOpeningOther, found.spanOf(parts.opening, second + 1), {"\"<@@\""});
    fixBy({second, 1, u""});
    suspect.element = similarElement(writtenElement(found));
    const auto candidates = quenlith::syntax::findMarkerCandidates(suspect.repaired);
    if (candidates.empty()) return;
    suspect.element = candidates.front().element;
    addId(makeFoundMarker(candidates.front(), found.line, suspect.repaired).id);
  }

  std::u16string_view nameAt(std::uint64_t begin) const {
    const std::u16string_view rest = line.substr(begin, end - begin);
    return rest.substr(
        0, static_cast<std::size_t>(std::ranges::find_if_not(rest, isNameUnit) - rest.begin()));
  }

  void writeUnknownElement() {
    const std::u16string_view written = writtenElement(found);
    if (isStartOfElement(written) && text.problem + written.size() == end)
      return writeCutOffElement(written);
    if (written != parts.element && !similarElement(written).empty())
      return writeBrokenElement(written);
    const Span span = found.spanOf(parts.element);
    const std::u16string_view similar = similarElement(parts.element);
    const std::u16string_view start = elementAtStart(parts.element);
    if (!similar.empty() && !isJoined(start)) {
      suspect.element = similar;
      const bool isSameLength = similar.size() == parts.element.size();
      const bool isCase = isSameLength && areEqualExceptCase(similar, parts.element);
      report(kUnknownElement, isCase ? kElementUpperCase : kElementSimilar, span,
             {quoted(parts.element), quoted(similar)});
      if (!isCertainElement(similar, isCase)) return;
      return fixBy({found.positionOf(parts.element), parts.element.size(), similar});
    }
    if (parts.element == u"anchor" && parts.type.empty()) return writeAnchorElement(span);
    if (start.empty()) return report(kUnknownElement, kElementOther, span, {quoted(parts.element)});
    suspect.element = start;
    writeJoinedElement(start, span);
  }

  /// "<@anchor#a>" lacks the element of anchors.
  void writeAnchorElement(Span span) {
    suspect.element = u"text";
    report(kUnknownElement, kElementSimilar, span, {quoted(parts.element), "\"text:anchor\""});
    fixBy({found.positionOf(parts.element), 0, u"text:"});
  }

  /// Returns whether nothing but the element is wrong when `similar` is meant: "<@TASK:FIT>" is
  /// upper case as a whole, and the last two characters of "<@outputt#otal>" may be swapped.
  bool isCertainElement(std::u16string_view similar, bool isCase) const {
    if (isCase) {
      const auto isLower = [](char16_t unit) { return unit >= u'a' && unit <= u'z'; };
      const std::u16string_view marker = line.substr(parts.opening, end - parts.opening);
      return std::ranges::any_of(marker, isLower) || parts.id.empty();
    }
    const bool isLonger =
        parts.element.size() > similar.size() && parts.element.starts_with(similar);
    const bool isPlural = isLonger && parts.element.back() == u's';
    return !isLonger || isPlural || similar == u"task";
  }

  /// The line ends in the element, or before it.
  void writeCutOffElement(std::u16string_view written) {
    text.problem = end;
    report(kUnclosedMarker, kEndCutOff, found.spanOf(parts.opening, end),
           {quoted(line.substr(parts.opening, end - parts.opening))});
    if (written.size() > 1) suspect.element = elementStartingWith(written);
    suspect.isCutOff = true;
    take(joinLines(text));
  }

  /// A character that no name has is in the element.
  void writeBrokenElement(std::u16string_view written) {
    suspect.element = similarElement(written);
    const std::uint64_t after = found.positionOf(written) + written.size();
    if (after < end && line[after] == u'#') addId(nameAt(after + 1));
    report(kUnknownElement, kElementSimilar, found.spanOf(written),
           {quoted(written), quoted(suspect.element)});
    fixBy({found.positionOf(written), written.size(), suspect.element});
  }

  /// Returns whether an id or type was probably joined to the element: "<@taskfit>" or
  /// "<@task-fit>", not "<@tasks>".
  bool isJoined(std::u16string_view start) const {
    return !start.empty() && parts.id.empty() && parts.type.empty() &&
           parts.element.substr(start.size()) != u"s" && !joinedTo(start).empty();
  }

  /// Returns what was joined to the element `start`.
  std::u16string_view joinedTo(std::u16string_view start) const {
    return afterSeparator(parts.element.substr(start.size()));
  }

  /// "<@taskfit>" and "<@textanchor#a>": the "#" or ":" after the element is missing. "<@task-fit>"
  /// has another character in its place.
  void writeJoinedElement(std::u16string_view start, Span span) {
    const std::u16string_view joined = joinedTo(start);
    const bool isType = !parts.id.empty() || joined == u"anchor";
    if (!isType) addId(joined);
    const std::u16string_view separator = isType ? u":" : u"#";
    std::u16string meant(start);
    meant += separator;
    meant += joined;
    report(kUnknownElement, kElementSimilar, span, {quoted(parts.element), quoted(meant)});
    const std::uint64_t at = found.positionOf(parts.element) + start.size();
    const bool isCertain = !isType || joined == u"anchor";
    if (isCertain) fixBy({at, found.positionOf(joined) - at, separator});
  }

  void writeMissingId() {
    const std::u16string_view rest = restAtProblem();
    if (rest.starts_with(u'\'')) return reportRepairable(kInvalidId, kIdSingleQuotes, {});
    const bool isAbsent =
        rest.empty() || u" \t>[{#"sv.find(rest.front()) != rest.npos || startsCloser(rest);
    if (isAbsent) return reportRepairable(kInvalidId, kIdAbsent, {});
    writeUnquotedId(text.problem, rest);
  }

  void writeQuotedId() {
    reportRepairable(kInvalidId, kIdNotJson, {quotedIdProblem()});
    if (!suspect.diagnostic.fix && text.problem >= end) closeQuote();
  }

  /// Takes what is before the ">" for the id, unless a range or data may be part of it.
  void closeQuote() {
    const std::size_t begin = line.find(u'"', parts.opening) + 1;
    const std::u16string_view rest = line.substr(begin, end - begin);
    const std::size_t length = rest.find(u'>');
    if (length == rest.npos || rest.find_first_of(u"\"[{") != rest.npos) return;
    addId(rest.substr(0, length));
    fixBy({begin + length, 0, u"\""});
  }

  std::string quotedIdProblem() const {
    const std::string_view reason = parts.jsonReason;
    if (text.problem >= end) return "its closing quote is missing";
    if (line[text.problem] == u'\\') {
      return plainText(line.substr(text.problem, 2)) + " is not an escape";
    }
    return std::string(reason);
  }

  /// "[0,5]{ " and "[0,5 ]{" have the blank on the wrong side.
  void writeMissingBlank(std::string_view part) {
    report(kMissingBlank, 0, found.spanOf(text.problem, text.problem + 1), {part});
    if (isOtherSpace(line[text.problem - 1])) return replaceOtherSpaces();
    const bool isAfter = text.problem + 1 < end && line[text.problem + 1] == u' ';
    const std::u16string swapped{u' ', line[text.problem]};
    if (isAfter) return fixBy({text.problem, 2, swapped});
    const bool isInside =
        text.problem > 1 && line[text.problem - 2] == u' ' && line[text.problem - 1] == u']';
    if (isInside) return fixBy({text.problem - 2, 2, u"] "});
    const bool isInId =
        text.problem > 1 && line[text.problem - 2] == u' ' && line[text.problem - 1] == u'"';
    fixBy(isInId ? Replacement{text.problem - 2, 2, u"\" "} : Replacement{text.problem, 0, u" "});
  }

  /// Another space is read as the end of the id or type before it.
  void replaceOtherSpaces() {
    std::uint64_t begin = text.problem;
    while (isOtherSpace(line[begin - 1])) --begin;
    const std::uint64_t length = text.problem - begin;
    fixBy({begin, length, u" "});
    const bool isInId = suspect.diagnostic.fix && !suspect.ids.empty();
    if (isInId) suspect.ids.front().resize(suspect.ids.front().size() - length);
  }

  void writeRange() {
    const char16_t unit = text.problem < end ? line[text.problem] : u'\0';
    const bool isNumberMissing = parts.problem == MarkerProblem::kRangeNumberMissing;
    if (isNumberMissing && (unit == u'-' || unit == u'+')) {
      return report(kInvalidRange, kRangeSign, atProblem(), {foundAtProblem()});
    }
    if (isNumberMissing) return reportRepairable(kInvalidRange, kRangeNumber, {foundAtProblem()});
    if (parts.problem == MarkerProblem::kRangeCommaMissing) {
      if (unit == u']') return report(kInvalidRange, kRangeOneNumber, atProblem(), {});
      return reportRepairable(kInvalidRange, kRangeComma, {foundAtProblem()});
    }
    reportRepairable(kInvalidRange, kRangeClosingBracket, {foundAtProblem()});
  }

  void writeData() {
    const std::string_view reason = parts.jsonReason;
    if (reason.find("too deep") != reason.npos)
      return report(kMarkerLimit, kLimitDepth, atProblem(), {});
    if (reason.find("largest double") != reason.npos) {
      return report(kMarkerLimit, kLimitNumber, found.spanOf(numberAtProblem()),
                    {quoted(numberAtProblem())});
    }
    if (text.problem >= end) {
      const bool isLineEnd = end == line.size();
      report(kInvalidData, kDataCutOff, atProblem(),
             {isLineEnd ? "the line ends" : "the next marker begins"});
      return repair();
    }
    if (line[text.problem] == u'\\' && reason.find("escape") != reason.npos) {
      const std::u16string_view escape = line.substr(text.problem, 2);
      return report(kInvalidData, kDataEscape, found.spanOf(escape), {plainText(escape)});
    }
    if (reason.find("control character") != reason.npos) {
      return report(kInvalidData, kDataControl, atProblem(), {foundAtProblem()});
    }
    text.mayMoveNames = true;
    text.isKey = reason == "a key in quotes is missing";
    reportRepairable(kInvalidData, kDataExpected, {expectedInJson(reason), foundAtProblem()});
    suspect.isKeyCompleted =
        text.isKey && suspect.diagnostic.fix && suspect.diagnostic.fix->edits.front().text == "\"";
  }

  std::u16string_view numberAtProblem() const {
    const std::u16string_view rest = restAtProblem();
    return rest.substr(0, std::min(rest.find_first_not_of(u"+-.0123456789eE"), rest.size()));
  }

  /// Something else is where the ">" must be: perhaps the rest of an id, a range or data.
  void writeMissingEnd() {
    const std::u16string_view rest = restAtProblem();
    const bool isRest = std::ranges::all_of(rest, isBlank) || startsCloser(rest);
    if (isRest) return reportRepairable(kUnclosedMarker, kEndAbsent, {});
    if (rest.front() == u'[' && !parts.data.empty()) {
      return report(kInvalidRange, kRangeAfterData, atProblem(), {});
    }
    if (rest.front() == u'#' && isInName()) return writeIdAfterBlank();
    if (looksLikeRange(rest))
      return reportRepairable(kInvalidRange, kRangeOpeningBracket, {foundAtProblem()});
    if (looksLikeData(rest)) return reportRepairable(kInvalidData, kDataBrace, {foundAtProblem()});
    if (isInId()) return writeUnquotedId(found.positionOf(parts.id), rest);
    reportRepairable(kUnclosedMarker, kEndOtherText, {foundAtProblem()});
    if (suspect.diagnostic.fix) writeSeparator(suspect.diagnostic.fix->edits.front().text);
  }

  /// The fix may be dropped, but the message says what it would insert.
  void writeSeparator(std::string_view inserted) {
    if (inserted != "#" && inserted != ":") return;
    suspect.diagnostic.message =
        catalogue::messageOf(kUnclosedMarker, kEndSeparator,
                             {foundAtProblem(), inserted == "#" ? "an id" : "a type",
                              inserted == "#" ? "\"#\"" : "\":\""});
  }

  bool startsCloser(std::u16string_view rest) const {
    return isBlock(parts.comment) && rest.starts_with(commentEndsOf(parts.comment).closer);
  }

  /// The element or type is the last part that was read.
  bool isInName() const { return parts.range.empty() && parts.data.empty() && parts.id.empty(); }

  void writeIdAfterBlank() {
    const std::uint64_t begin = line.find_last_not_of(u" \t", text.problem - 1) + 1;
    addId(nameAt(text.problem + 1));
    report(kInvalidId, kIdAfterBlank, found.spanOf(begin, text.problem), {});
    fixBy({begin, text.problem - begin, u""});
  }

  /// The id is the last part that was read, and is not quoted.
  bool isInId() const {
    return parts.range.empty() && parts.data.empty() && !parts.id.empty() &&
           parts.id.front() != u'"';
  }

  /// `rest` continues the id that begins at `begin`.
  void writeUnquotedId(std::uint64_t begin, std::u16string_view rest) {
    const std::size_t close = rest.find(u'>');
    if (close == rest.npos && !parts.id.empty())
      return reportRepairable(kUnclosedMarker, kEndOtherText, {foundAtProblem()});
    const std::size_t last = close == rest.npos ? rest.find_first_of(u" \t") : close;
    const std::size_t other = std::min({last, rest.find(u" ["), rest.find(u" {"), rest.size()});
    const std::u16string_view whole = line.substr(begin, text.problem + other - begin);
    const std::u16string_view first = line.substr(begin + parts.id.size(), 1);
    const std::string name = isBlank(first.front()) ? "a blank" : quoted(first);
    addId(whole);
    report(kInvalidId, kIdUnquoted, found.spanOf(whole), {name, quoted(whole)});
    repair();
  }

  void writeMissingCloser() {
    const std::u16string_view closer = commentEndsOf(parts.comment).closer;
    const std::uint64_t at =
        std::min<std::uint64_t>(line.find_first_not_of(u" \t", text.problem), end);
    if (at == line.size()) {
      return report(kUnclosedComment, kCloserAbsent, found.span(), {quoted(closer)});
    }
    text.problem = at;
    reportRepairable(kUnclosedComment, kCloserOtherText, {quoted(closer), foundAtProblem()});
  }

  void writeMissingLeader() {
    switch (parts.problem) {
      case MarkerProblem::kLeaderTooShort:
        return writeShortLeader();
      case MarkerProblem::kMissingBlankAfterRemark: {
        const std::u16string_view word =
            line.substr(parts.position, parts.opening - parts.position);
        report(kMissingLeader, kLeaderNoBlank, found.span(), {quoted(word)});
        return fixBy({parts.opening, 0, u" "});
      }
      default:
        return parts.followsMarker ? writeSecondMarker() : writeNoLeader();
    }
  }

  void writeShortLeader() {
    std::u16string_view leader = line.substr(parts.position, parts.opening - parts.position);
    leader = leader.substr(0, leader.find_last_not_of(u" \t") + 1);
    const char16_t last = leader.back();
    if (last == u'*')
      return report(kMissingLeader, kLeaderStar, found.spanOf(leader), {quoted(leader)});
    const bool endsComment = last == u'/' && parts.position > 0 && line[parts.position - 1] == u'*';
    if (endsComment)
      return report(kMissingLeader, kLeaderAbsent, found.spanOf(parts.opening, found.end()), {});
    const bool isBlock =
        last == u'/' && parts.bodyEnd && commentEndAt(line.substr(*parts.bodyEnd)).ends_with(last);
    const std::u16string_view missing = isBlock ? u"*"sv : leader.substr(leader.size() - 1);
    std::u16string complete(leader);
    complete += missing;
    report(kMissingLeader, catalogue::forms::kLeaderTooShort, found.spanOf(leader),
           {quoted(leader), quoted(complete)});
    // A "-" or "/" with a blank after it may be a list item or a division.
    const bool isCertain = leader.size() > 1 || isBlock || parts.opening == parts.position + 1;
    if (isCertain && startsComment(last)) fixBy({parts.position + leader.size(), 0, missing});
  }

  /// Returns whether a leader of more of these characters may begin where the short one does. After
  /// other text, or after one of them, something else is wrong.
  bool startsComment(char16_t unit) const {
    const std::u16string_view before = line.substr(0, parts.position);
    const std::size_t last = before.find_last_not_of(u" \t");
    return last == before.npos || (last + 1 < before.size() && before[last] != unit);
  }

  void writeRemark(std::u16string_view remark) {
    report(kMissingLeader, catalogue::forms::kLeaderTooShort, found.spanOf(remark),
           {quoted(remark), "\"REM\""});
    text.begin = found.positionOf(remark);
    fixBy({text.begin, remark.size(), u"REM"});
  }

  void writeNoLeader() {
    const std::u16string_view remark = remarkAtEndOf(line.substr(0, parts.opening));
    if (!remark.empty()) return writeRemark(remark);
    if (hasReplacedBlank(found)) {
      const std::u16string_view replaced = line.substr(parts.opening - 1, 1);
      return report(kMissingLeader, kLeaderReplacedBlank, found.span(), {quoted(replaced)});
    }
    if (parts.opening == 0 || line[parts.opening - 1] != u'<') {
      return report(kMissingLeader, kLeaderAbsent, found.span(), {});
    }
    report(kIncompleteOpening, kOpeningOther, found.spanOf(parts.opening - 1, parts.opening + 2),
           {"\"<<@\""});
    text.begin = std::min(line.substr(0, parts.opening - 1).find_last_not_of(u"#%;!/-*(<{ \t") + 1,
                          parts.opening - 1);
    while (text.begin < parts.opening - 1 && isBlank(line[text.begin])) ++text.begin;
    fixBy({parts.opening - 1, 1, u""});
  }

  /// The leader of the marker before it can be repeated if that begins a line comment.
  void writeSecondMarker() {
    report(kMissingLeader, kLeaderOfOtherMarker, found.span(), {});
    if (before == nullptr || before->parts.comment != CommentForm::kLine) return;
    const auto& first = before->parts;
    std::u16string_view leader =
        before->lineText.substr(first.position, first.opening - first.position);
    leader = leader.substr(0, leader.find_last_not_of(u" \t") + 1);
    std::u16string inserted(leader);
    inserted += u' ';
    if (parts.opening > 0 && !isBlank(line[parts.opening - 1])) inserted.insert(0, u" ");
    fixBy({parts.opening, 0, inserted});
  }

  const FoundMarker* before;
};

}  // namespace

Suspect describeProblem(const FoundMarker& found, std::uint64_t end, const FoundMarker* before,
                        std::optional<std::u16string_view> nextLine) {
  return ProblemWriter(found, end, before, nextLine).write();
}

}  // namespace tessera::check::suspects

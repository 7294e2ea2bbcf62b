#include "tessera/check/suspects/isIntended.hpp"

#include <algorithm>
#include <array>

#include "tessera/check/scan/commentEnd.hpp"
#include "tessera/check/suspects/likeness.hpp"
#include "tessera/spelling/areSimilar.hpp"

namespace tessera::check::suspects {

using namespace scan;
namespace {

using quenlith::syntax::CommentForm;
using quenlith::syntax::MarkerProblem;

// Blanks, and the characters that the ends of block comments consist of.
constexpr std::u16string_view kBlanks = u" \t";
constexpr std::u16string_view kBlanksAndCommentEnds = u" \t*/)-}";

constexpr std::array<std::u16string_view, 5> kIntendedElements{u"control", u"output", u"task",
                                                               u"text", kAppendix};

bool isKnown(std::u16string_view element) {
  return std::ranges::find(kIntendedElements, element) != kIntendedElements.end();
}

/// Returns whether something of a marker besides the element is there.
bool hasParts(const FoundMarker& found) {
  const auto& parts = found.parts;
  return !parts.type.empty() || !parts.id.empty() || !parts.range.empty() || !parts.data.empty();
}

bool differsInOneUnit(std::u16string_view a, std::u16string_view b) {
  if (a.size() != b.size()) return false;
  std::size_t count = 0;
  for (std::size_t i = 0; i < a.size(); ++i) count += a[i] != b[i] ? 1U : 0U;
  return count == 1;
}

/// Returns whether the text after "<@" ends like the range or the data of a marker.
bool endsLikeMarker(const FoundMarker& found) {
  std::u16string_view rest = found.lineText.substr(found.parts.opening + 2);
  rest = rest.substr(0, rest.find(u"<@"));
  for (const std::u16string_view end : {u"}>", u"]>"}) {
    const std::size_t last = rest.rfind(end);
    if (last == rest.npos) continue;
    std::u16string_view after = rest.substr(last + end.size());
    const std::u16string_view commentEnd = commentEndAt(after);
    if (!commentEnd.empty()) after.remove_prefix(after.find(commentEnd) + commentEnd.size());
    if (after.find_first_not_of(u" \t") == after.npos) return true;
  }
  return false;
}

/// "<@test>" may be anything; "<@taks>", "<@tasks>" and "<@Text>" may not.
bool mayBeOtherWord(std::u16string_view element) {
  return similarElement(element) == u"text" &&
         differsInOneUnit(u"text", spelling::lowered(element));
}

bool isUnknownElementIntended(const FoundMarker& found) {
  const auto& parts = found.parts;
  if (!isComplete(parts.comment)) return false;
  const bool isWhole = parts.bodyEnd.has_value();
  // A whole marker of another element is one of a host that knows more elements, or a mistake.
  if (isWhole && (!parts.range.empty() || !parts.id.empty())) return true;
  if (endsLikeMarker(found)) return true;
  const std::u16string_view written = writtenElement(found);
  const std::uint64_t after = found.positionOf(written) + written.size();
  const std::u16string_view rest = found.lineText.substr(after);
  // The end of a block comment may have been cut short, as in "(* <@outpu)".
  const bool isAtEnd =
      rest.find_first_not_of(isBlock(parts.comment) ? kBlanksAndCommentEnds : kBlanks) == rest.npos;
  if (isAtEnd && isStartOfElement(written)) return true;
  const bool isWord = isStartOfElement(written) || !similarElement(written).empty();
  if (isWord && isBlock(parts.comment) && !commentEndAt(rest).empty()) return true;
  if (written != parts.element) {
    return !similarElement(written).empty() && (rest.starts_with(u'#') || rest.starts_with(u':'));
  }
  if (similarElement(parts.element).empty() && elementAtStart(parts.element).empty()) return false;
  if (hasParts(found)) return true;
  return isWhole && !mayBeOtherWord(parts.element);
}

/// Returns whether `rest` begins with "appendix", perhaps with a typing mistake, and ">".
bool startsWithAppendix(std::u16string_view rest) {
  const std::size_t length = std::min(rest.find_first_of(u"> \t"), rest.size());
  const std::u16string_view word = rest.substr(0, length);
  const std::size_t end = rest.find_first_not_of(kBlanks, length);
  const bool isEnded = end != rest.npos && rest[end] == u'>';
  return isEnded && (word == kAppendix || similarElement(word) == kAppendix);
}

/// Returns whether the text becomes a marker when blanks after "<@" are removed, or an element is
/// put there.
bool isElementMissing(const FoundMarker& found) {
  if (!isComplete(found.parts.comment)) return false;
  if (endsLikeMarker(found)) return true;
  const std::uint64_t begin = found.parts.opening + 2;
  const std::u16string_view line = found.lineText;
  const std::uint64_t next = std::min(line.find_first_not_of(u" \t", begin), line.size());
  if (next == line.size()) return true;
  const std::u16string_view written = writtenElement(found);
  const std::uint64_t after = begin + written.size();
  const bool hasPart = after < line.size() && (line[after] == u'#' || line[after] == u':');
  if (hasPart && !similarElement(written).empty()) return true;
  std::u16string_view rest = line.substr(next);
  rest = rest.substr(0, rest.find(u"<@"));
  std::u16string repaired(line.substr(found.parts.position, begin - found.parts.position));
  if (next == begin && !rest.starts_with(u'@')) repaired += kIntendedElements.front();
  if (rest.starts_with(u'@')) rest.remove_prefix(1);
  if (startsWithAppendix(rest)) return true;
  repaired += rest;
  const auto candidates = quenlith::syntax::findMarkerCandidates(repaired);
  if (candidates.empty() || candidates.front().problem != MarkerProblem::kNone) return false;
  const auto& parts = candidates.front();
  return !parts.id.empty() || !parts.type.empty() || !parts.range.empty();
}

/// Returns whether a whole marker without a leader is likely to be meant as one: in running text, a
/// quoted marker is none.
bool isLeaderMissing(const FoundMarker& found) {
  const auto& parts = found.parts;
  if (parts.element == kAppendix) {
    const std::u16string_view line = found.lineText;
    return line.substr(0, parts.opening).find_last_not_of(u" \t") == line.npos &&
           line.find_first_not_of(u" \t", *parts.bodyEnd) == line.npos;
  }
  if (parts.followsMarker) return true;
  if (!hasParts(found)) return false;
  if (hasReplacedBlank(found)) return true;
  if (!commentEndAt(found.lineText.substr(*parts.bodyEnd)).empty()) return true;
  const char16_t before = parts.opening == 0 ? u' ' : found.lineText[parts.opening - 1];
  return before == u' ' || before == u'\t' || before == u'<';
}

}  // namespace

std::u16string_view similarElement(std::u16string_view written) {
  for (const std::u16string_view plural : {u"appendices", u"appendixes"}) {
    if (areEqualExceptCase(plural, written)) return kAppendix;
  }
  const auto found = std::ranges::find_if(
      kIntendedElements,
      [written](std::u16string_view element) { return spelling::areSimilar(element, written); });
  return found == kIntendedElements.end() ? std::u16string_view() : *found;
}

std::u16string_view elementAtStart(std::u16string_view written) {
  const auto found =
      std::ranges::find_if(kIntendedElements, [written](std::u16string_view element) {
        return element != kAppendix && written.size() > element.size() &&
               written.starts_with(element);
      });
  return found == kIntendedElements.end() ? std::u16string_view() : *found;
}

std::u16string_view writtenElement(const FoundMarker& found) {
  std::u16string_view rest = found.lineText.substr(found.parts.opening + 2);
  // Each candidate of a line has its own part of it.
  rest = rest.substr(0, rest.find(u"<@"));
  const auto broken = std::ranges::find_if(kIntendedElements, [rest](std::u16string_view element) {
    if (rest.size() <= element.size() || !differsInOneUnit(rest.substr(0, element.size()), element))
      return false;
    return rest[element.size()] == u':' || rest[element.size()] == u'#';
  });
  if (broken != kIntendedElements.end()) return rest.substr(0, broken->size());
  const std::u16string_view end = isBlock(found.parts.comment) ? u":#[{> \t*/)}" : u":#[{> \t";
  return rest.substr(0, std::min(rest.find_first_of(end), rest.size()));
}

bool hasReplacedBlank(const FoundMarker& found) {
  const std::uint64_t opening = found.parts.opening;
  if (opening < 2 || found.lineText[opening - 1] == u'<') return false;
  // The longest leader of interest; a longer run of characters ends with one.
  const std::uint64_t begin = opening - std::min<std::uint64_t>(opening, 5);
  std::u16string repaired(found.lineText.substr(begin, opening - begin));
  repaired.back() = u' ';
  const char16_t before = repaired[repaired.size() - 2];
  if (before == u' ' || before == u'\t') return false;
  repaired += u"<@task>";
  const auto candidates = quenlith::syntax::findMarkerCandidates(repaired);
  if (candidates.size() != 1) return false;
  const MarkerProblem problem = candidates.front().problem;
  return problem == MarkerProblem::kNone || problem == MarkerProblem::kMissingCloser;
}

bool isStartOfElement(std::u16string_view written) {
  return !elementStartingWith(written).empty() && !isKnown(written);
}

std::u16string_view elementStartingWith(std::u16string_view written) {
  const auto found = std::ranges::find_if(
      kIntendedElements,
      [written](std::u16string_view element) { return element.starts_with(written); });
  return found == kIntendedElements.end() ? std::u16string_view() : *found;
}

bool isIntended(const FoundMarker& found) {
  const auto& parts = found.parts;
  switch (parts.problem) {
    case MarkerProblem::kUnknownElement:
      return isUnknownElementIntended(found);
    case MarkerProblem::kMissingElement:
      return isElementMissing(found);
    case MarkerProblem::kMissingLeader:
      return isLeaderMissing(found);
    case MarkerProblem::kLeaderTooShort:
    case MarkerProblem::kMissingBlankAfterRemark:
    case MarkerProblem::kMissingCloser:
    case MarkerProblem::kBadAppendixLine:
      return isKnown(parts.element);
    default:
      return isComplete(parts.comment) && isKnown(parts.element);
  }
}

}  // namespace tessera::check::suspects

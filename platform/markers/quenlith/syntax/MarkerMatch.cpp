#include "quenlith/syntax/MarkerMatch.hpp"

#include <algorithm>
#include <limits>

#include "foundation/json/Lexer.hpp"
#include "foundation/json/parse.hpp"
#include "quenlith/syntax/CommentStart.hpp"
#include "quenlith/syntax/MarkerUnits.hpp"

namespace quenlith::syntax {

namespace {

constexpr std::u16string_view kOpening = u"<@";

// Reads one marker from left to right. An operation that does not find what it expects records the
// problem in the match and returns false.
class Matcher {
 public:
  Matcher(std::u16string_view text, std::size_t at, MarkerMatch& match)
      : text(text), at(at), match(match) {}

  void run(CommentForm comment, Elements elements) {
    if (takeElement(elements) && takeType() && takeId() && takeRange() && takeData() && takeEnd() &&
        isBlock(comment)) {
      takeCloser(comment);
    }
    match.end = at;
  }

 private:
  bool peekIs(char16_t unit) const { return at < text.size() && text[at] == unit; }

  bool consumeIf(char16_t unit) {
    const bool found = peekIs(unit);
    at += found ? 1 : 0;
    return found;
  }

  bool fail(MarkerProblem problem) {
    match.problem = problem;
    return false;
  }

  bool failJson(MarkerProblem problem, std::size_t position, const char* reason) {
    at = position;
    match.jsonReason = reason;
    return fail(problem);
  }

  bool skipBlanks() {
    const std::size_t start = at;
    while (at < text.size() && isBlank(text[at])) {
      ++at;
    }
    return at != start;
  }

  std::u16string_view takeName() {
    const std::size_t start = at;
    while (at < text.size() && isNameUnit(text[at])) {
      ++at;
    }
    return text.substr(start, at - start);
  }

  bool takeElement(Elements elements) {
    match.element = takeName();
    match.known = findKnownElement(match.element);
    return match.known != KnownElement::kOther || takeOtherElement(elements);
  }

  bool takeOtherElement(Elements elements) {
    if (match.element.empty()) return fail(MarkerProblem::kMissingElement);
    const bool isAccepted = elements == Elements::kAnyAndAppendix ||
                            (elements == Elements::kAny && match.element != kAppendix);
    return isAccepted || fail(MarkerProblem::kUnknownElement);
  }

  bool takeType() {
    if (consumeIf(u':')) {
      match.type = takeName();
      return !match.type.empty() || fail(MarkerProblem::kMissingType);
    }
    return true;
  }

  bool takeId() {
    if (!consumeIf(u'#')) {
      return true;
    }
    if (peekIs(u'"')) {
      return takeQuotedId();
    }
    match.id = takeName();
    return !match.id.empty() || fail(MarkerProblem::kMissingId);
  }

  bool takeQuotedId() {
    foundation::json::Lexer lexer(text, at);
    if (lexer.next() == foundation::json::Token::kError) {
      return failJson(MarkerProblem::kBadQuotedId, lexer.begin(), lexer.error());
    }
    match.id = text.substr(at, lexer.end() - at);
    at = lexer.end();
    return true;
  }

  bool expect(char16_t unit, MarkerProblem problem) { return consumeIf(unit) || fail(problem); }

  // A blank must precede the range and the data.
  bool takeRange() {
    isAfterBlank = skipBlanks();
    if (!peekIs(u'[')) {
      return true;
    }
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    const std::size_t start = at;
    if (!takeBracket() || !takeNumber(begin) || !expect(u',', MarkerProblem::kRangeCommaMissing) ||
        !takeNumber(end) || !expect(u']', MarkerProblem::kRangeBracketMissing)) {
      return false;
    }
    match.range.emplace(begin, end);
    match.rangeText = text.substr(start, at - start);
    isAfterBlank = skipBlanks();
    return true;
  }

  bool takeBracket() {
    at += isAfterBlank ? 1 : 0;
    return isAfterBlank || fail(MarkerProblem::kMissingBlankBeforeRange);
  }

  // Reads digits and the blanks around them. A number that does not fit becomes 2^64 - 1.
  bool takeNumber(std::uint64_t& number) {
    bool fits = true;
    skipBlanks();
    const std::size_t start = at;
    for (; at < text.size() && isDigit(text[at]); ++at) {
      fits = fits && !__builtin_mul_overflow(number, 10U, &number) &&
             !__builtin_add_overflow(number, static_cast<unsigned>(text[at] - u'0'), &number);
    }
    if (at == start) {
      return fail(MarkerProblem::kRangeNumberMissing);
    }
    number = fits ? number : std::numeric_limits<std::uint64_t>::max();
    skipBlanks();
    return true;
  }

  bool takeData() {
    if (!peekIs(u'{')) {
      return true;
    }
    if (!isAfterBlank) {
      return fail(MarkerProblem::kMissingBlankBeforeData);
    }
    const auto extent = foundation::json::measureEmbeddedObject(text, at);
    if (!extent.end) {
      return failJson(MarkerProblem::kBadData, extent.failure.position, extent.failure.reason);
    }
    match.data = text.substr(at, *extent.end - at);
    at = *extent.end;
    skipBlanks();
    return true;
  }

  bool takeEnd() {
    if (!expect(u'>', MarkerProblem::kMissingEnd)) return false;
    match.bodyEnd = at;
    return true;
  }

  void takeCloser(CommentForm comment) {
    skipBlanks();
    const auto end = findCloserEnd(text, at, comment);
    if (end) {
      at = *end;
    } else {
      fail(MarkerProblem::kMissingCloser);
    }
  }

  std::u16string_view text;
  std::size_t at;
  MarkerMatch& match;
  bool isAfterBlank = false;
};

}  // namespace

void matchMarker(std::u16string_view text, std::size_t opening, CommentForm comment,
                 Elements elements, MarkerMatch& match) noexcept {
  match = MarkerMatch();
  Matcher(text, opening + kOpening.size(), match).run(comment, elements);
}

bool isName(std::u16string_view text) noexcept {
  return !text.empty() && std::ranges::all_of(text, isNameUnit);
}

}  // namespace quenlith::syntax

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

  void run(Elements elements) {
    if (takeElement(elements) && takeType() && takeId() && takeRange() && takeData()) {
      takeEnd();
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

  // The text from `start` to the position. Not by `substr`: where that is not inlined, it takes the
  // address of `text`, and the compiler keeps the whole object in memory, which cost a marker 100
  // of 475 instructions.
  std::u16string_view since(std::size_t start) const { return {text.data() + start, at - start}; }

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
    return since(start);
  }

  bool takeElement(Elements elements) {
    match.element = takeName();
    match.known = findKnownElement(match.element);
    return match.known != KnownElement::kOther || takeOtherElement(elements);
  }

  bool takeOtherElement(Elements elements) {
    if (match.element.empty()) return fail(MarkerProblem::kMissingElement);
    const bool isAccepted = elements == Elements::kAnyAndAppendix ||
                            (elements == Elements::kAny && match.element != kAppendixElement);
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
    const std::size_t start = at;
    at = lexer.end();
    match.id = since(start);
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
    match.rangeText = since(start);
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
    const std::size_t start = at;
    at = *extent.end;
    match.data = since(start);
    skipBlanks();
    return true;
  }

  void takeEnd() {
    if (expect(u'>', MarkerProblem::kMissingEnd)) match.bodyEnd = at;
  }

  std::u16string_view text;
  std::size_t at;
  MarkerMatch& match;
  bool isAfterBlank = false;
};

// Reads the closer after a body that matches.
void matchCloser(std::u16string_view text, CommentForm comment, MarkerMatch& match) noexcept {
  while (match.end < text.size() && isBlank(text[match.end])) {
    ++match.end;
  }
  if (const auto end = findCloserEnd(text, match.end, comment)) {
    match.end = *end;
  } else {
    match.problem = MarkerProblem::kMissingCloser;
  }
}

}  // namespace

void matchMarker(std::u16string_view text, std::size_t opening, CommentForm comment,
                 Elements elements, MarkerMatch& match) noexcept {
  match = MarkerMatch();
  Matcher(text, opening + kOpening.size(), match).run(elements);
  if (isBlock(comment) && match.problem == MarkerProblem::kNone) matchCloser(text, comment, match);
}

bool isName(std::u16string_view text) noexcept {
  return !text.empty() && std::ranges::all_of(text, isNameUnit);
}

}  // namespace quenlith::syntax

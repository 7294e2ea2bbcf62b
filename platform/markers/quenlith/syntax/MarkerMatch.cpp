#include "quenlith/syntax/MarkerMatch.hpp"

#include <array>
#include <limits>

#include "foundation/json/Lexer.hpp"
#include "foundation/json/parse.hpp"

namespace quenlith::syntax {

namespace {

constexpr std::u16string_view kOpening = u"<@";
constexpr std::u16string_view kAppendix = u"appendix";

constexpr bool isDigit(char16_t unit) {
  return unit >= u'0' && unit <= u'9';
}

// Which units below U+0080 are allowed in a name.
constexpr std::array<bool, 0x80> kNameUnits = [] {
  std::array<bool, 0x80> units{};
  for (char16_t unit = 0; unit < 0x80; ++unit) {
    const auto lower = static_cast<char16_t>(unit | 0x20U);
    units[unit] = (lower >= u'a' && lower <= u'z') || isDigit(unit) || unit == u'_' ||
                  unit == u'-' || unit == u'.';
  }
  return units;
}();

bool isNameUnit(char16_t unit) {
  return unit >= kNameUnits.size() || kNameUnits[unit];
}

// How often a character must be repeated to be a leader; 0 when it cannot be one.
std::size_t leaderMinimum(char16_t unit) {
  switch (unit) {
    case u'%':
    case u'#':
      return 1;
    case u'/':
    case u'-':
    case u';':
      return 2;
    default:
      return 0;
  }
}

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

  bool fail(const char* why) {
    match.problem = why;
    return false;
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
    const bool isAccepted =
        match.known != KnownElement::kOther ||
        (elements == Elements::kAny && !match.element.empty() && match.element != kAppendix);
    return isAccepted || fail("there is no such element");
  }

  bool takeType() {
    if (consumeIf(u':')) {
      match.type = takeName();
      return !match.type.empty() || fail("a type is missing behind ':'");
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
    return !match.id.empty() || fail("an id is missing behind '#'");
  }

  bool takeQuotedId() {
    foundation::json::Lexer lexer(text, at);
    if (lexer.next() == foundation::json::Token::kError) {
      at = lexer.begin();
      return fail(lexer.error());
    }
    match.id = text.substr(at, lexer.end() - at);
    at = lexer.end();
    return true;
  }

  bool expect(char16_t unit, const char* why) { return consumeIf(unit) || fail(why); }

  // A blank must precede the range and the data.
  bool takeRange() {
    isAfterBlank = skipBlanks();
    if (!peekIs(u'[')) {
      return true;
    }
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    if (!takeBracket() || !takeNumber(begin) || !expect(u',', "a ',' is missing in the range") ||
        !takeNumber(end) || !expect(u']', "a ']' is missing")) {
      return false;
    }
    match.range.emplace(begin, end);
    isAfterBlank = skipBlanks();
    return true;
  }

  bool takeBracket() {
    at += isAfterBlank ? 1 : 0;
    return isAfterBlank || fail("a blank is missing before the range");
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
      return fail("a number is missing in the range");
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
      return fail("a blank is missing before the data");
    }
    const auto extent = foundation::json::measureEmbeddedObject(text, at);
    if (!extent.end) {
      at = extent.failure.position;
      return fail(extent.failure.reason);
    }
    match.data = text.substr(at, *extent.end - at);
    at = *extent.end;
    skipBlanks();
    return true;
  }

  bool takeEnd() { return expect(u'>', "a '>' is missing"); }

  std::u16string_view text;
  std::size_t at;
  MarkerMatch& match;
  bool isAfterBlank = false;
};

}  // namespace

void matchMarker(std::u16string_view text, std::size_t opening, Elements elements,
                 MarkerMatch& match) noexcept {
  match = MarkerMatch();
  Matcher(text, opening + kOpening.size(), match).run(elements);
}

std::optional<std::size_t> findLeader(std::u16string_view text, std::size_t opening) noexcept {
  std::size_t end = opening;
  while (end > 0 && isBlank(text[end - 1])) {
    --end;
  }
  const char16_t unit = end > 0 ? text[end - 1] : u'\0';
  const std::size_t minimum = leaderMinimum(unit);
  if (minimum == 0) {
    return std::nullopt;
  }
  std::size_t start = end - 1;
  while (start > 0 && text[start - 1] == unit) {
    --start;
  }
  return end - start < minimum ? std::nullopt : std::optional<std::size_t>(start);
}

std::optional<std::size_t> leaderLength(std::u16string_view text) noexcept {
  std::size_t length = 0;
  const std::size_t minimum = text.empty() ? 0 : leaderMinimum(text.front());
  while (minimum != 0 && length < text.size() && text[length] == text.front()) {
    ++length;
  }
  if (length < minimum) {
    return std::nullopt;
  }
  while (length < text.size() && isBlank(text[length])) {
    ++length;
  }
  return length;
}

bool isName(std::u16string_view text) noexcept {
  for (const char16_t unit : text) {
    if (!isNameUnit(unit)) {
      return false;
    }
  }
  return !text.empty();
}

bool isBlank(char16_t unit) noexcept {
  return unit == u' ' || unit == u'\t';
}

}  // namespace quenlith::syntax

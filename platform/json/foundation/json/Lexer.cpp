#include "foundation/json/Lexer.hpp"

#include <array>
#include <optional>

#include "fl/i18n/search.hpp"
#include "fl/i18n/ustring.hpp"
#include "foundation/json/digits.hpp"

namespace foundation::json {

namespace {

using fl::i18n::UnitRange;

constexpr std::size_t kHexDigits = 4;

int hexValue(char16_t unit) {
  if (isDigit(unit)) {
    return unit - u'0';
  }
  const char16_t lower = unit | 0x20U;
  return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : -1;
}

struct Escape {
  char16_t letter;
  char16_t meaning;
};
constexpr std::array<Escape, 8> kEscapes{{{u'"', u'"'},
                                          {u'\\', u'\\'},
                                          {u'/', u'/'},
                                          {u'b', u'\b'},
                                          {u'f', u'\f'},
                                          {u'n', u'\n'},
                                          {u'r', u'\r'},
                                          {u't', u'\t'}}};

const Escape* findEscape(char16_t letter) {
  for (const Escape& escape : kEscapes) {
    if (escape.letter == letter) {
      return &escape;
    }
  }
  return nullptr;
}

// The value of the four hexadecimal digits at the start of `digits`.
std::optional<char16_t> readHex(std::u16string_view digits) {
  if (digits.size() < kHexDigits) {
    return std::nullopt;
  }
  int unit = 0;
  for (const char16_t digit : digits.substr(0, kHexDigits)) {
    const int value = hexValue(digit);
    if (value < 0) {
      return std::nullopt;
    }
    unit = unit * 16 + value;
  }
  return static_cast<char16_t>(unit);
}

// Decodes the escapes of a string's content, which must be well-formed.
std::u16string unescape(std::u16string_view content) {
  std::u16string result;
  result.reserve(content.size());
  for (std::size_t at = content.find(u'\\'); at != std::u16string_view::npos;
       at = content.find(u'\\')) {
    result.append(content.substr(0, at));
    const char16_t letter = content[at + 1];
    content.remove_prefix(at + 2);
    if (letter == u'u') {
      result += *readHex(content);
      content.remove_prefix(kHexDigits);
    } else {
      result += findEscape(letter)->meaning;
    }
  }
  result.append(content);
  return result;
}

}  // namespace

Lexer::Lexer(std::u16string_view text, std::size_t from, Space space, std::size_t depthLimit)
    : text16(text),
      at(from),
      tokenBegin(from),
      tokenEnd(from),
      depthLimit(depthLimit),
      space(space) {}

Token Lexer::next() {
  skipSpace();
  tokenBegin = at;
  switch (state) {
    case State::kValue:
      return readValue();
    case State::kFirstValue:
      return consumeIf(u']') ? close(Token::kEndArray) : readValue();
    case State::kFirstKey:
      return consumeIf(u'}') ? close(Token::kEndObject) : readKey();
    case State::kAfterValue:
      return readAfterValue();
    case State::kDone:
      return readEnd();
    default:
      return Token::kError;
  }
}

std::u16string Lexer::text() const {
  const auto content = text16.substr(tokenBegin + 1, tokenEnd - tokenBegin - 2);
  return hasEscapes ? unescape(content) : std::u16string(content);
}

std::string Lexer::utf8() const {
  if (hasEscapes) {
    return fl::i18n::ustring_to_utf8(text());
  }
  return fl::i18n::ustring_to_utf8(text16.substr(tokenBegin + 1, tokenEnd - tokenBegin - 2));
}

bool Lexer::consumeIf(char16_t unit) {
  if (!peekIs(unit)) {
    return false;
  }
  ++at;
  return true;
}

bool Lexer::consumeDigits() {
  const std::size_t start = at;
  while (!atEnd() && isDigit(text16[at])) {
    ++at;
  }
  return at != start;
}

void Lexer::skipSpace() {
  while (!atEnd()) {
    const char16_t unit = text16[at];
    const bool lineBreak = unit == u'\n' || unit == u'\r';
    if (unit != u' ' && unit != u'\t' && !(lineBreak && space == Space::kAll)) {
      return;
    }
    ++at;
  }
}

Token Lexer::token(Token kind, State following) {
  tokenEnd = at;
  state = following;
  return kind;
}

Token Lexer::fail(const char* why) {
  message = atEnd() ? "the text ends too early" : why;
  tokenBegin = at;
  return token(Token::kError, State::kFailed);
}

Token Lexer::open(Token kind, State inside) {
  if (openCount == depthLimit) {
    return fail("the nesting is too deep");
  }
  ++at;
  isObject[openCount++] = kind == Token::kBeginObject;
  return token(kind, inside);
}

Token Lexer::close(Token kind) {
  --openCount;
  return token(kind, afterValue());
}

Token Lexer::readKey() {
  if (!peekIs(u'"')) {
    return fail("a key in quotes is missing");
  }
  if (readString(Token::kKey, State::kValue) == Token::kError) {
    return Token::kError;
  }
  skipSpace();
  return consumeIf(u':') ? Token::kKey : fail("a ':' is missing");
}

Token Lexer::readValue() {
  switch (atEnd() ? u'\0' : text16[at]) {
    case u'{':
      return open(Token::kBeginObject, State::kFirstKey);
    case u'[':
      return open(Token::kBeginArray, State::kFirstValue);
    case u'"':
      return readString(Token::kString, afterValue());
    case u't':
      return readWord(u"true", Token::kTrue);
    case u'f':
      return readWord(u"false", Token::kFalse);
    case u'n':
      return readWord(u"null", Token::kNull);
    default:
      return readNumberToken();
  }
}

Token Lexer::readAfterValue() {
  const bool inObject = isObject[openCount - 1];
  if (consumeIf(u',')) {
    skipSpace();
    tokenBegin = at;
    return inObject ? readKey() : readValue();
  }
  if (inObject) {
    return consumeIf(u'}') ? close(Token::kEndObject) : fail("a ',' or '}' is missing");
  }
  return consumeIf(u']') ? close(Token::kEndArray) : fail("a ',' or ']' is missing");
}

Token Lexer::readEnd() {
  return atEnd() ? token(Token::kEnd, State::kDone) : fail("there is text behind the value");
}

Token Lexer::readString(Token kind, State following) {
  ++at;
  hasEscapes = false;
  while (true) {
    at = fl::i18n::findAny<UnitRange(0, 0x1F), u'"', u'\\'>(text16, at);
    if (consumeIf(u'"')) {
      return token(kind, following);
    }
    if (!peekIs(u'\\')) {
      return fail("a control character stands in a string");
    }
    hasEscapes = true;
    if (!readEscape()) {
      return fail("there is no such escape");
    }
  }
}

// Stays at the backslash when the escape is not valid.
bool Lexer::readEscape() {
  const std::u16string_view rest = text16.substr(at + 1);
  const char16_t letter = rest.empty() ? u'\0' : rest.front();
  if (letter == u'u' && readHex(rest.substr(1))) {
    at += 2 + kHexDigits;
    return true;
  }
  if (findEscape(letter) != nullptr) {
    at += 2;
    return true;
  }
  return false;
}

Token Lexer::readNumberToken() {
  consumeIf(u'-');
  if (!consumeIf(u'0') && !consumeDigits()) {
    return fail("a value is missing");
  }
  if (consumeIf(u'.') && !consumeDigits()) {
    return fail("a digit is missing");
  }
  if (consumeIf(u'e') || consumeIf(u'E')) {
    if (!consumeIf(u'+')) {
      consumeIf(u'-');
    }
    if (!consumeDigits()) {
      return fail("a digit is missing");
    }
  }
  const auto number = parseNumber(text16.substr(tokenBegin, at - tokenBegin));
  if (!number) {
    at = tokenBegin;
    return fail("the number is beyond the largest double");
  }
  currentNumber = *number;
  return token(Token::kNumber, afterValue());
}

Token Lexer::readWord(std::u16string_view word, Token kind) {
  if (text16.substr(at, word.size()) != word) {
    return fail("a value is missing");
  }
  at += word.size();
  return token(kind, afterValue());
}

}  // namespace foundation::json

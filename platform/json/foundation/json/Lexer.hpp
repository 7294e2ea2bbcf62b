#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "foundation/json/Number.hpp"
#include "foundation/json/Value.hpp"
#include "quenlith/export/json.hpp"

namespace foundation::json {

/// The kinds of token. `kEnd` follows the one value of the text. `kError` is returned where the
/// text is not JSON, and by every later call.
enum class Token : std::uint8_t {
  kBeginObject,
  kEndObject,
  kBeginArray,
  kEndArray,
  kKey,
  kString,
  kNumber,
  kTrue,
  kFalse,
  kNull,
  kEnd,
  kError
};

/// The white space accepted between tokens: all of JSON's, or spaces and tabs only.
enum class Space : std::uint8_t { kAll, kBlanks };

/// Reads the tokens of one JSON value (RFC 8259) from 16-bit text, one at a time.
///
/// Borrows the text. Positions count 16-bit code units from the start of the text. Strings are
/// available as 16-bit text, in which unpaired surrogates are kept, and as UTF-8, in which they
/// become U+FFFD; a pair is one character whether or not its halves are escaped. A number beyond
/// the largest double is an error. `next` does not throw and does not allocate.
class QUENLITH_JSON_EXPORT Lexer {
 public:
  /// The upper bound of `depthLimit`.
  static constexpr std::size_t kMaxDepth = 512;

  /// Starts at `from`. Containers may nest up to `depthLimit` levels deep, which is at most
  /// `kMaxDepth`; the outermost one is at depth 1.
  explicit Lexer(std::u16string_view text, std::size_t from = 0, Space space = Space::kAll,
                 std::size_t depthLimit = kMaxDepth);

  /// Returns the next token.
  Token next();

  /// The first unit of the token, including its quote; for `kError`, the first unit that is not
  /// allowed.
  std::size_t begin() const { return tokenBegin; }

  /// The position after the last unit of the token. For a key that is the position after its
  /// quote, although the colon is read along with it.
  std::size_t end() const { return tokenEnd; }

  /// The number of open containers.
  std::size_t depth() const { return openCount; }

  /// The key or string as 16-bit text with its escapes decoded. After `kKey` or `kString` only.
  std::u16string text() const;

  /// The key or string as UTF-8 with its escapes decoded. After `kKey` or `kString` only.
  std::string utf8() const;

  /// The number. After `kNumber` only.
  const Number& number() const { return currentNumber; }

  /// What is wrong, as text for a person. A constant. After `kError` only.
  const char* error() const { return message; }

 private:
  enum class State : std::uint8_t { kValue, kFirstValue, kFirstKey, kAfterValue, kDone, kFailed };

  bool atEnd() const { return at == text16.size(); }
  bool peekIs(char16_t unit) const { return at < text16.size() && text16[at] == unit; }
  bool consumeIf(char16_t unit);
  bool consumeDigits();
  void skipSpace();
  State afterValue() const { return openCount == 0 ? State::kDone : State::kAfterValue; }

  Token token(Token kind, State following);
  Token fail(const char* why);
  Token open(Token kind, State inside);
  Token close(Token kind);
  Token readKey();
  Token readValue();
  Token readAfterValue();
  Token readEnd();
  Token readString(Token kind, State following);
  Token readNumberToken();
  Token readWord(std::u16string_view word, Token kind);
  bool readEscape();

  std::u16string_view text16;
  std::size_t at;
  std::size_t tokenBegin;
  std::size_t tokenEnd;
  std::size_t depthLimit;
  std::size_t openCount = 0;
  std::bitset<kMaxDepth> isObject;
  Number currentNumber;
  const char* message = nullptr;
  Space space;
  State state = State::kValue;
  bool hasEscapes = false;
};

}  // namespace foundation::json

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

/// What stands next in a JSON text. `kEnd` stands behind the one value of the text; `kError` where
/// the text is none, and then for ever.
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

/// The white space between tokens: all that JSON has, or spaces and tabs only (a text on one line).
enum class Space : std::uint8_t { kAll, kBlanks };

/// Reads the tokens of one JSON value (RFC 8259) out of 16-bit text, one at a time.
///
/// Borrows the text. Positions count 16-bit code units from the start of the text. Strings come
/// as 16-bit text, an escaped unpaired surrogate as that unit, or as UTF-8, in which surrogates
/// are paired however they were spelt and unpaired ones are U+FFFD. A number beyond the largest
/// double is an error. Never throws but for memory, and needs none but for strings with escapes.
class QUENLITH_JSON_EXPORT Lexer {
 public:
  /// The greatest depth that a lexer can be told to allow; a value that holds no other is at 0.
  static constexpr std::size_t kMaxDepth = 512;

  /// Starts at `from`. `depthLimit`, at most `kMaxDepth`, is how deep containers may nest; the
  /// outermost one is at depth 1.
  explicit Lexer(std::u16string_view text, std::size_t from = 0, Space space = Space::kAll,
                 std::size_t depthLimit = kMaxDepth);

  Token next();

  /// First unit of the token, its quote included; of `kError`: of what cannot stand there.
  std::size_t begin() const { return tokenBegin; }

  /// Behind the last unit of the token.
  std::size_t end() const { return tokenEnd; }

  /// How many containers are open.
  std::size_t depth() const { return openCount; }

  /// The key or string as 16-bit text, escapes undone.
  std::u16string text() const;

  /// The key or string as UTF-8.
  std::string utf8() const;

  const Number& number() const { return currentNumber; }

  /// What is wrong, for a person; after `kError` only.
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

#include "foundation/json/parse.hpp"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "foundation/json/Lexer.hpp"
#include "foundation/json/flatObject.hpp"

namespace foundation::json {

namespace {

// Builds a value from its tokens. The pointers to the open containers stay valid, because a
// container grows only while none of its children is open.
class Builder {
 public:
  void take(const Lexer& lexer, Token token) {
    switch (token) {
      case Token::kKey:
        key = lexer.utf8();
        return;
      case Token::kBeginObject:
        open.push_back(&add(Object()));
        return;
      case Token::kBeginArray:
        open.push_back(&add(Array()));
        return;
      case Token::kEndObject:
      case Token::kEndArray:
        open.pop_back();
        return;
      default:
        add(leaf(lexer, token));
    }
  }

  Value finish() { return std::move(root); }

 private:
  static Value leaf(const Lexer& lexer, Token token) {
    switch (token) {
      case Token::kString:
        return lexer.utf8();
      case Token::kNumber:
        return std::visit([](auto number) { return Value(number); }, lexer.number());
      case Token::kNull:
        return Null();
      default:
        return token == Token::kTrue;
    }
  }

  // Adds `value` to the innermost open container, or makes it the root.
  Value& add(Value value) {
    if (open.empty()) {
      root = std::move(value);
      return root;
    }
    if (Array* array = open.back()->getIf<Array>()) {
      return array->emplace_back(std::move(value));
    }
    auto& object = open.back()->get<Object>();
    return object.insert_or_assign(object.end(), std::move(key), std::move(value))->second;
  }

  Value root;
  std::vector<Value*> open;
  std::string key;
};

Lexer embeddedLexer(std::u16string_view text, std::size_t from) {
  return Lexer(text, from, Space::kBlanks, kEmbeddedDepth);
}

}  // namespace

std::optional<EmbeddedObject> parseEmbeddedObject(std::u16string_view text, std::size_t from) {
  Lexer lexer = embeddedLexer(text, from);
  Builder builder;
  do {
    const Token token = lexer.next();
    if (token == Token::kError) {
      return std::nullopt;
    }
    builder.take(lexer, token);
  } while (lexer.depth() != 0);
  return EmbeddedObject{std::move(builder.finish().get<Object>()), lexer.end()};
}

ObjectExtent measureEmbeddedObject(std::u16string_view text, std::size_t from) noexcept {
  if (const std::size_t end = flatObjectEnd(text, from); end != from) return {end, {}};
  Lexer lexer = embeddedLexer(text, from);
  do {
    if (lexer.next() == Token::kError) {
      return {std::nullopt, {lexer.begin(), lexer.error()}};
    }
  } while (lexer.depth() != 0);
  return {lexer.end(), {}};
}

ParseResult parse(std::u16string_view text) {
  Lexer lexer(text);
  Builder builder;
  while (true) {
    const Token token = lexer.next();
    if (token == Token::kError) {
      return {std::nullopt, {lexer.begin(), lexer.error()}};
    }
    if (token == Token::kEnd) {
      return {builder.finish(), {}};
    }
    builder.take(lexer, token);
  }
}

}  // namespace foundation::json

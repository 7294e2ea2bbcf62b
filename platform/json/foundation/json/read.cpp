#include "foundation/json/read.hpp"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "foundation/json/Reader.hpp"
#include "foundation/json/flatObject.hpp"

namespace foundation::json {

namespace {

// Puts the tokens of one value together. The pointers stay good: a container grows only while
// none that it holds is open.
class Builder {
 public:
  void take(const Reader& reader, Token token) {
    switch (token) {
      case Token::kKey:
        key = reader.utf8();
        return;
      case Token::kBeginObject:
        open.push_back(&place(Object()));
        return;
      case Token::kBeginArray:
        open.push_back(&place(Array()));
        return;
      case Token::kEndObject:
      case Token::kEndArray:
        open.pop_back();
        return;
      default:
        place(leaf(reader, token));
    }
  }

  Value finish() { return std::move(root); }

 private:
  static Value leaf(const Reader& reader, Token token) {
    switch (token) {
      case Token::kString:
        return reader.utf8();
      case Token::kNumber:
        return std::visit([](auto number) { return Value(number); }, reader.number());
      case Token::kNull:
        return Null();
      default:
        return token == Token::kTrue;
    }
  }

  Value& place(Value value) {
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

Reader embeddedReader(std::u16string_view text, std::size_t from) {
  return Reader(text, from, Space::kBlanks, kEmbeddedDepth);
}

}  // namespace

std::optional<EmbeddedObject> readEmbeddedObject(std::u16string_view text, std::size_t from) {
  Reader reader = embeddedReader(text, from);
  Builder builder;
  do {
    const Token token = reader.next();
    if (token == Token::kError) {
      return std::nullopt;
    }
    builder.take(reader, token);
  } while (reader.depth() != 0);
  return EmbeddedObject{std::move(builder.finish().get<Object>()), reader.end()};
}

ObjectExtent measureEmbeddedObject(std::u16string_view text, std::size_t from) noexcept {
  if (const std::size_t end = flatObjectEnd(text, from); end != from) return {end, {}};
  Reader reader = embeddedReader(text, from);
  do {
    if (reader.next() == Token::kError) {
      return {std::nullopt, {reader.begin(), reader.error()}};
    }
  } while (reader.depth() != 0);
  return {reader.end(), {}};
}

ReadResult readText(std::u16string_view text) {
  Reader reader(text);
  Builder builder;
  while (true) {
    const Token token = reader.next();
    if (token == Token::kError) {
      return {std::nullopt, {reader.begin(), reader.error()}};
    }
    if (token == Token::kEnd) {
      return {builder.finish(), {}};
    }
    builder.take(reader, token);
  }
}

}  // namespace foundation::json

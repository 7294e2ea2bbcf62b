#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/json/Value.hpp"

namespace quenlith::oracle {

/// The marker's rules of JSON, word by word: recursive descent over the grammar of RFC 8259,
/// numbers by the C library. Each operation returns the place behind what it read, or nothing.
class JsonTwin {
 public:
  explicit JsonTwin(std::u16string_view source) : text(source) {}

  std::optional<std::size_t> object(std::size_t at, int depth,
                                    foundation::json::Value& value) const;
  std::optional<std::size_t> string(std::size_t at, std::u16string& value) const;
  std::size_t blanks(std::size_t at) const;

 private:
  char16_t unitAt(std::size_t at) const { return at < text.size() ? text[at] : u'\0'; }
  std::optional<std::size_t> value(std::size_t at, int depth, foundation::json::Value& value) const;
  std::optional<std::size_t> array(std::size_t at, int depth, foundation::json::Value& value) const;
  std::optional<std::size_t> member(std::size_t at, int depth,
                                    foundation::json::Object& members) const;
  std::optional<std::size_t> number(std::size_t at, foundation::json::Value& value) const;
  std::optional<std::size_t> digits(std::size_t at) const;
  std::optional<std::size_t> escape(std::size_t at, std::u16string& value) const;

  std::u16string_view text;
};

/// UTF-8 of 16-bit text, unpaired surrogates as U+FFFD.
std::string twinUtf8(std::u16string_view text);

}  // namespace quenlith::oracle

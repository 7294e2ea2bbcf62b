#include "JsonTwin.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdlib>

namespace quenlith::oracle {

using foundation::json::Array;
using foundation::json::Null;
using foundation::json::Object;
using foundation::json::Value;
using Place = std::optional<std::size_t>;

namespace {

constexpr int kDeepest = 64;

struct Word {
  std::u16string_view spelling;
  bool isNull;
  bool isTrue;
};
constexpr std::array<Word, 3> kWords{
    {{u"true", false, true}, {u"false", false, false}, {u"null", true, false}}};

void appendCode(std::string& bytes, char32_t code) {
  const auto add = [&](char32_t byte) {
    bytes += static_cast<char>(static_cast<unsigned char>(byte));
  };
  if (code < 0x80) {
    add(code);
  } else if (code < 0x800) {
    add(0xC0 + code / 0x40);
    add(0x80 + code % 0x40);
  } else if (code < 0x10000) {
    add(0xE0 + code / 0x1000);
    add(0x80 + code / 0x40 % 0x40);
    add(0x80 + code % 0x40);
  } else {
    add(0xF0 + code / 0x40000);
    add(0x80 + code / 0x1000 % 0x40);
    add(0x80 + code / 0x40 % 0x40);
    add(0x80 + code % 0x40);
  }
}

// The number that a literal writes, by strtoll, strtoull and strtod in turn.
std::optional<Value> numberOf(const std::string& literal) {
  if (literal.find_first_of(".eE") == std::string::npos) {
    errno = 0;
    const long long whole = std::strtoll(literal.c_str(), nullptr, 10);
    if (errno == 0) {
      return Value(static_cast<std::int64_t>(whole));
    }
    errno = 0;
    const unsigned long long positive = std::strtoull(literal.c_str(), nullptr, 10);
    if (errno == 0 && literal[0] != '-') {
      return Value(static_cast<std::uint64_t>(positive));
    }
  }
  const double number = std::strtod(literal.c_str(), nullptr);
  if (std::isinf(number)) {
    return std::nullopt;
  }
  return Value(number);
}

}  // namespace

std::string twinUtf8(std::u16string_view text) {
  std::string bytes;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char32_t unit = text[at];
    const char32_t next = at + 1 < text.size() ? text[at + 1] : 0;
    if (unit >= 0xD800 && unit < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
      appendCode(bytes, 0x10000 + (unit - 0xD800) * 0x400 + (next - 0xDC00));
      ++at;
    } else {
      appendCode(bytes, unit >= 0xD800 && unit < 0xE000 ? 0xFFFD : unit);
    }
  }
  return bytes;
}

std::size_t JsonTwin::blanks(std::size_t at) const {
  while (unitAt(at) == u' ' || unitAt(at) == u'\t') {
    ++at;
  }
  return at;
}

Place JsonTwin::object(std::size_t at, int depth, Value& value) const {
  if (unitAt(at) != u'{' || depth > kDeepest) {
    return {};
  }
  Object members;
  at = blanks(at + 1);
  if (unitAt(at) != u'}') {
    while (true) {
      const Place behind = member(blanks(at), depth, members);
      if (!behind) {
        return {};
      }
      at = blanks(*behind);
      if (unitAt(at) != u',') {
        break;
      }
      ++at;
    }
  }
  if (unitAt(at) != u'}') {
    return {};
  }
  value = Value(members);
  return at + 1;
}

Place JsonTwin::member(std::size_t at, int depth, Object& members) const {
  std::u16string key;
  const Place behindKey = string(at, key);
  if (!behindKey) {
    return {};
  }
  const std::size_t colon = blanks(*behindKey);
  if (unitAt(colon) != u':') {
    return {};
  }
  Value held;
  const Place behind = value(blanks(colon + 1), depth, held);
  if (behind) {
    members[twinUtf8(key)] = held;
  }
  return behind;
}

Place JsonTwin::array(std::size_t at, int depth, Value& value) const {
  if (unitAt(at) != u'[' || depth > kDeepest) {
    return {};
  }
  Array elements;
  at = blanks(at + 1);
  if (unitAt(at) != u']') {
    while (true) {
      Value element;
      const Place behind = this->value(blanks(at), depth, element);
      if (!behind) {
        return {};
      }
      elements.push_back(element);
      at = blanks(*behind);
      if (unitAt(at) != u',') {
        break;
      }
      ++at;
    }
  }
  if (unitAt(at) != u']') {
    return {};
  }
  value = Value(elements);
  return at + 1;
}

Place JsonTwin::value(std::size_t at, int depth, Value& value) const {
  if (unitAt(at) == u'{') {
    return object(at, depth + 1, value);
  }
  if (unitAt(at) == u'[') {
    return array(at, depth + 1, value);
  }
  if (unitAt(at) == u'"') {
    std::u16string held;
    const Place behind = string(at, held);
    value = Value(twinUtf8(held));
    return behind;
  }
  for (const Word& word : kWords) {
    if (text.substr(at, word.spelling.size()) == word.spelling) {
      value = word.isNull ? Value(Null()) : Value(word.isTrue);
      return at + word.spelling.size();
    }
  }
  return number(at, value);
}

Place JsonTwin::digits(std::size_t at) const {
  const std::size_t start = at;
  while (unitAt(at) >= u'0' && unitAt(at) <= u'9') {
    ++at;
  }
  return at == start ? Place() : Place(at);
}

Place JsonTwin::number(std::size_t at, Value& value) const {
  const std::size_t start = at;
  at += unitAt(at) == u'-' ? 1 : 0;
  Place behind = unitAt(at) == u'0' ? Place(at + 1) : digits(at);
  if (behind && unitAt(*behind) == u'.') {
    behind = digits(*behind + 1);
  }
  if (behind && (unitAt(*behind) == u'e' || unitAt(*behind) == u'E')) {
    const char16_t sign = unitAt(*behind + 1);
    behind = digits(*behind + (sign == u'+' || sign == u'-' ? 2 : 1));
  }
  if (!behind) {
    return {};
  }
  std::string literal;
  for (const char16_t unit : text.substr(start, *behind - start)) {
    literal += static_cast<char>(unit);
  }
  const auto held = numberOf(literal);
  value = held.value_or(Value());
  return held ? behind : Place();
}

Place JsonTwin::string(std::size_t at, std::u16string& value) const {
  if (unitAt(at) != u'"') {
    return {};
  }
  ++at;
  while (at < text.size() && text[at] != u'"') {
    if (text[at] < 0x20) {
      return {};
    }
    if (text[at] != u'\\') {
      value += text[at++];
      continue;
    }
    const Place behind = escape(at + 1, value);
    if (!behind) {
      return {};
    }
    at = *behind;
  }
  return at < text.size() ? Place(at + 1) : Place();
}

// The part behind the backslash.
Place JsonTwin::escape(std::size_t at, std::u16string& value) const {
  constexpr std::u16string_view kLetters = u"\"\\/bfnrt";
  constexpr std::u16string_view kMeanings = u"\"\\/\b\f\n\r\t";
  const std::size_t which = kLetters.find(unitAt(at));
  if (at < text.size() && which != std::u16string_view::npos) {
    value += kMeanings[which];
    return at + 1;
  }
  if (unitAt(at) != u'u' || at + 4 >= text.size()) {
    return {};
  }
  unsigned unit = 0;
  for (const char16_t digit : text.substr(at + 1, 4)) {
    const std::size_t lower = std::u16string_view(u"0123456789abcdef").find(digit);
    const std::size_t upper = std::u16string_view(u"0123456789ABCDEF").find(digit);
    if (lower == std::u16string_view::npos && upper == std::u16string_view::npos) {
      return {};
    }
    unit = unit * 16 + static_cast<unsigned>(std::min(lower, upper));
  }
  value += static_cast<char16_t>(unit);
  return at + 5;
}

}  // namespace quenlith::oracle

#include "JsonTwin.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "TextTwin.hpp"

// Unpaired surrogates reach the encoder, which would assert that there are none.
#define RAPIDJSON_ASSERT(condition) static_cast<void>(0)
#include <rapidjson/reader.h>

namespace quenlith::oracle {

using foundation::json::Array;
using foundation::json::Null;
using foundation::json::Object;
using foundation::json::Value;

namespace {

using Utf16 = rapidjson::UTF16<char16_t>;

constexpr std::size_t kEscapeUnits = 6;

bool isHexDigit(char16_t unit) {
  return (unit >= u'0' && unit <= u'9') || (unit >= u'a' && unit <= u'f') ||
         (unit >= u'A' && unit <= u'F');
}

// Returns the unit that the \uXXXX escape at `at` denotes; nothing if no such escape begins there.
std::optional<char16_t> escapedUnit(std::u16string_view text, std::size_t at) {
  const std::u16string_view escape = text.substr(at, kEscapeUnits);
  if (escape.size() < kEscapeUnits || !escape.starts_with(u"\\u")) return std::nullopt;
  std::string digits;
  for (const char16_t unit : escape.substr(2)) {
    if (!isHexDigit(unit)) return std::nullopt;
    digits += static_cast<char>(unit);
  }
  return static_cast<char16_t>(std::strtoul(digits.c_str(), nullptr, 16));
}

/// A number with an exponent.
struct ScaledNumber {
  // 0 if there is none.
  std::size_t length = 0;
  // The digits of its double, or the number as it is if no double can hold it.
  std::string digits;
};

// Returns the number with an exponent at the start of `text`.
ScaledNumber readScaledNumber(std::u16string_view text) {
  const std::size_t end = std::min(text.find_first_not_of(u"0.eE+-123456789"), text.size());
  if (end == 0) return {};
  static const std::regex kScaled("-?(0|[1-9][0-9]*)(\\.[0-9]+)?[eE][-+]?[0-9]+");
  const std::string literal(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end));
  // Most literals have none, and the expression takes long.
  if (literal.find_first_of("eE") == literal.npos) return {};
  if (!std::regex_match(literal, kScaled)) return {};
  const double value = std::strtod(literal.c_str(), nullptr);
  if (!std::isfinite(value)) return {end, literal};
  std::array<char, 32> buffer;
  const int size = std::snprintf(buffer.data(), buffer.size(), "%.16e", value);
  return {end, {buffer.data(), static_cast<std::size_t>(size)}};
}

// A text in which each number with an exponent has 17 digits, because RapidJSON rejects large
// exponents and some spellings of the largest double, and in which escaped surrogates are replaced
// by their units, which RapidJSON copies unchecked. Maps its positions to those of the original
// text.
class Stream {
 public:
  using Ch = char16_t;

  Stream(std::u16string_view text, std::size_t from) {
    bool isInString = false;
    while (from < text.size()) {
      const auto unit = escapedUnit(text, from);
      const ScaledNumber number = isInString ? ScaledNumber() : readScaledNumber(text.substr(from));
      if (unit && (*unit & 0xF800) == 0xD800) {
        add(*unit, from);
        from += kEscapeUnits;
      } else if (number.length != 0) {
        for (const char digit : number.digits) add(static_cast<char16_t>(digit), from);
        from += number.length;
      } else {
        isInString = isInString != (text[from] == u'"');
        // The unit after a backslash begins no escape and ends no string.
        const bool isEscape = text[from] == u'\\' && from + 1 < text.size();
        add(text[from], from);
        if (isEscape) add(text[from + 1], from + 1);
        from += isEscape ? 2 : 1;
      }
    }
    positions.push_back(from);
  }

  // NOLINTBEGIN(readability-identifier-naming): the names are those that RapidJSON calls.

  // A U+0000 is not part of any JSON text, so it can end one.
  Ch Peek() const { return at < units.size() ? units[at] : u'\0'; }
  Ch Take() {
    const Ch unit = Peek();
    at += at < units.size() ? 1 : 0;
    return unit;
  }
  std::size_t Tell() const { return at; }
  std::size_t position() const { return positions[at]; }

  bool hasLineBreak() const {
    return units.substr(0, at).find_first_of(u"\n\r") != std::u16string::npos;
  }

  // Returns the literal of the number that was read last.
  std::string numberBefore() const {
    const std::u16string read = units.substr(0, at);
    const std::size_t before = read.find_last_not_of(u"0123456789+-.eE");
    const auto begin = read.begin() + static_cast<std::ptrdiff_t>(before + 1);
    return std::string(begin, read.end());
  }

  // RapidJSON writes to a stream only when it parses in place.
  static Ch* PutBegin() { return nullptr; }
  static void Put(Ch) {}
  static std::size_t PutEnd(Ch*) { return 0; }
  // NOLINTEND(readability-identifier-naming)

 private:
  void add(char16_t unit, std::size_t position) {
    units += unit;
    positions.push_back(position);
  }

  std::u16string units;
  std::vector<std::size_t> positions;
  std::size_t at = 0;
};

// Receives the events of RapidJSON; an operation that returns false ends the parse.
class Handler {
 public:
  using Ch = char16_t;

  Handler(const Stream& stream, std::size_t depthLimit) : stream(stream), depthLimit(depthLimit) {}

  // NOLINTBEGIN(readability-identifier-naming): the names are those that RapidJSON calls.
  bool Null() { return place(foundation::json::Null()); }
  bool Bool(bool value) { return place(value); }
  bool Int(int value) { return place(value); }
  bool Uint(unsigned value) { return place(std::int64_t{value}); }
  bool Int64(std::int64_t value) { return place(value); }
  bool Uint64(std::uint64_t value) {
    const bool isSigned = value <= std::uint64_t{std::numeric_limits<std::int64_t>::max()};
    return place(isSigned ? Value(static_cast<std::int64_t>(value)) : Value(value));
  }
  bool Double(double) {
    const double value = std::strtod(stream.numberBefore().c_str(), nullptr);
    return std::isfinite(value) && place(value);
  }
  bool String(const Ch* units, rapidjson::SizeType length, bool) {
    lastString.assign(units, length);
    return place(fl::i18n::twin::encodeUtf8(lastString));
  }
  bool Key(const Ch* units, rapidjson::SizeType length, bool) {
    open.back().key = fl::i18n::twin::encodeUtf8({units, length});
    return true;
  }
  bool StartObject() { return start(Object()); }
  bool EndObject(rapidjson::SizeType) { return end(); }
  bool StartArray() { return start(Array()); }
  bool EndArray(rapidjson::SizeType) { return end(); }

  // Never called, because kParseNumbersAsStringsFlag is not set: with 16-bit text RapidJSON 1.1
  // truncates such a number.
  static bool RawNumber(const Ch*, rapidjson::SizeType, bool) { return false; }
  // NOLINTEND(readability-identifier-naming)

  Value takeRoot() { return std::move(root); }
  const std::u16string& string() const { return lastString; }

 private:
  struct Container {
    Value value;
    std::string key;
  };

  bool start(Value container) {
    open.push_back({std::move(container), {}});
    return open.size() <= depthLimit;
  }

  bool end() {
    Value finished = std::move(open.back().value);
    open.pop_back();
    return place(std::move(finished));
  }

  bool place(Value value) {
    if (open.empty()) {
      root = std::move(value);
    } else if (Array* const array = open.back().value.getIf<Array>()) {
      array->push_back(std::move(value));
    } else {
      open.back().value.get<Object>()[open.back().key] = std::move(value);
    }
    return true;
  }

  const Stream& stream;
  std::size_t depthLimit;
  std::vector<Container> open;
  Value root;
  std::u16string lastString;
};

}  // namespace

std::optional<TwinValue> parseByRapidJson(std::u16string_view text, std::size_t from,
                                          TwinSpace space, std::size_t depthLimit) {
  constexpr unsigned kFlags = rapidjson::kParseStopWhenDoneFlag |
                              rapidjson::kParseFullPrecisionFlag | rapidjson::kParseIterativeFlag;
  Stream stream(text, from);
  Handler handler(stream, depthLimit);
  rapidjson::GenericReader<Utf16, Utf16> reader;
  if (reader.Parse<kFlags>(stream, handler).IsError()) return std::nullopt;
  // RapidJSON rejects a line break inside a string too.
  if (space == TwinSpace::kBlanks && stream.hasLineBreak()) return std::nullopt;
  TwinValue result{handler.takeRoot(), {}, stream.position()};
  if (result.value.is<std::string>()) result.units = handler.string();
  return result;
}

}  // namespace quenlith::oracle

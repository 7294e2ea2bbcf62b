#include "PlainMarker.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <type_traits>

#include "TextTwin.hpp"

namespace quenlith::oracle {

using foundation::json::Array;
using foundation::json::Kind;
using foundation::json::Object;
using foundation::json::Value;

namespace {

std::string print(const char* format, int precision, double number) {
  std::array<char, 400> buffer;
  const int length = std::snprintf(buffer.data(), buffer.size(), format, precision, number);
  return {buffer.data(), static_cast<std::size_t>(length)};
}

// Returns the scientific notation with the fewest digits that read back as `number`.
std::string shortestNotation(double number) {
  std::string text;
  for (int precision = 0; precision < 17; ++precision) {
    text = print("%.*e", precision, number);
    if (std::strtod(text.c_str(), nullptr) == number) break;
  }
  return text;
}

// Plain notation from 1e-6 up to but not including 1e21, else an exponent with its sign.
std::string showDouble(double number) {
  if (number == 0) return std::signbit(number) ? "-0.0" : "0.0";
  const std::string text = shortestNotation(number);
  const std::size_t e = text.find('e');
  const int exponent = std::atoi(text.c_str() + e + 1);
  const std::size_t point = text.find('.');
  const int fraction = point < e ? static_cast<int>(e - point - 1) : 0;
  if (exponent < -6 || exponent > 20) {
    return text.substr(0, e) + (exponent < 0 ? "e-" : "e+") + std::to_string(std::abs(exponent));
  }
  // An integer of more than 2^53 has zeros after its shortest digits, not its own digits.
  const int decimals = std::max(fraction - exponent, 0);
  std::string plain = decimals > 0 ? print("%.*f", decimals, number) : text.substr(0, e);
  if (decimals > 0) return plain;
  plain.erase(std::remove(plain.begin(), plain.end(), '.'), plain.end());
  plain.append(static_cast<std::size_t>(exponent - fraction), '0');
  return plain + ".0";
}

template <class Unit>
std::basic_string<Unit> quote(const std::basic_string<Unit>& text) {
  constexpr std::string_view kShort = "\bb\ff\nn\rr\tt";
  std::basic_string<Unit> out(1, Unit{'"'});
  for (const Unit unit : text) {
    const bool isControl = static_cast<std::make_unsigned_t<Unit>>(unit) < 0x20;
    const std::size_t at = isControl ? kShort.find(static_cast<char>(unit)) : kShort.npos;
    if (unit == Unit{'"'} || unit == Unit{'\\'}) {
      out += {Unit{'\\'}, unit};
    } else if (at != kShort.npos) {
      out += {Unit{'\\'}, static_cast<Unit>(kShort[at + 1])};
    } else if (isControl) {
      out += {Unit{'\\'}, Unit{'u'}, Unit{'0'}, Unit{'0'}};
      out += static_cast<Unit>(unit < Unit{0x10} ? '0' : '1');
      out += static_cast<Unit>("0123456789abcdef"[unit % 16]);
    } else {
      out += unit;
    }
  }
  return out += Unit{'"'};
}

std::string showValue(const Value& value);

std::string showObject(const Object& object) {
  std::string out;
  for (const auto& [key, value] : object) {
    out += (out.empty() ? "" : ",") + quote(key) + ':' + showValue(value);
  }
  return '{' + out + '}';
}

std::string showArray(const Array& array) {
  std::string out;
  for (const Value& value : array) out += (out.empty() ? "" : ",") + showValue(value);
  return '[' + out + ']';
}

std::string showValue(const Value& value) {
  switch (value.kind()) {
    case Kind::kBoolean:
      return value.get<bool>() ? "true" : "false";
    case Kind::kDouble:
      return showDouble(value.get<double>());
    case Kind::kString:
      return quote(value.get<std::string>());
    case Kind::kArray:
      return showArray(value.get<Array>());
    case Kind::kObject:
      return showObject(value.get<Object>());
    case Kind::kSigned:
      return std::to_string(value.get<std::int64_t>());
    case Kind::kUnsigned:
      return std::to_string(value.get<std::uint64_t>());
    default:
      return "null";
  }
}

bool isName(const std::u16string& text) {
  return std::all_of(text.begin(), text.end(), isNameUnit);
}

}  // namespace

bool isNameUnit(char16_t unit) {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') ||
         (unit >= u'0' && unit <= u'9') || unit == u'_' || unit == u'-' || unit == u'.' ||
         unit >= 0x80;
}

std::u16string canonicalText(const PlainMarker& marker) {
  std::u16string text = u"%<@" + marker.element;
  if (!marker.type.empty()) text += u':' + marker.type;
  if (!marker.id.empty()) text += u'#' + (isName(marker.id) ? marker.id : quote(marker.id));
  if (!marker.data.empty()) {
    text += u' ' + fl::i18n::twin::decodeUtf8(showObject(marker.data)).text;
  }
  return text + u'>';
}

}  // namespace quenlith::oracle

#include "oracle/support/showJson.hpp"

#include <array>
#include <cstdio>

namespace quenlith::oracle {

namespace {

using foundation::json::Array;
using foundation::json::Kind;
using foundation::json::Value;

std::string showValue(const Value& value);

std::string showDouble(double number) {
  std::array<char, 40> buffer{};
  const int length = std::snprintf(buffer.data(), buffer.size(), "%.17g", number);
  return {buffer.data(), static_cast<std::size_t>(length)};
}

std::string showArray(const Array& array) {
  std::string out = "[";
  for (const Value& value : array) out += showValue(value) + ' ';
  return out + ']';
}

std::string showHeld(const Value& value) {
  switch (value.kind()) {
    case Kind::kBoolean:
      return value.get<bool>() ? "true" : "false";
    case Kind::kDouble:
      return showDouble(value.get<double>());
    case Kind::kString:
      return '"' + value.get<std::string>() + '"';
    case Kind::kArray:
      return showArray(value.get<Array>());
    case Kind::kObject:
      return showJson(value.get<JsonMap>());
    case Kind::kFloat:
      return showDouble(static_cast<double>(value.get<float>()));
    case Kind::kSigned:
      return std::to_string(value.get<std::int64_t>());
    case Kind::kUnsigned:
      return std::to_string(value.get<std::uint64_t>());
    default:
      return {};
  }
}

std::string showValue(const Value& value) {
  return foundation::json::nameOf(value.kind()) + (' ' + showHeld(value));
}

}  // namespace

std::string showJson(const JsonMap& data) {
  std::string out = "{";
  for (const auto& [key, value] : data) out += '"' + key + "\": " + showValue(value) + ' ';
  return out + '}';
}

}  // namespace quenlith::oracle

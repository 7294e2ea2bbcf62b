#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace foundation::json {

class Value;

/// The absence of a value, for example the value of a key that a map does not contain.
struct Undefined {
  friend bool operator==(Undefined, Undefined) = default;
};

/// JSON's null.
struct Null {
  friend bool operator==(Null, Null) = default;
};

using Array = std::vector<Value>;

/// Members by UTF-8 key, ascending by the bytes of the key.
using Object = std::map<std::string, Value>;

/// The kinds of a value, in the order of `Value`'s alternatives.
enum class Kind : std::uint8_t {
  kUndefined,
  kNull,
  kBoolean,
  kDouble,
  kString,
  kArray,
  kObject,
  kFloat,
  kSigned,
  kUnsigned
};

/// The kind of a type that a value can contain, and its name in messages. The names are distinct.
/// Not defined for any other type.
// NOLINTBEGIN(readability-identifier-naming): `traits` and `name` are fixed by the interface.
template <typename T>
struct traits;

template <>
struct traits<Undefined> {
  static constexpr Kind kKind = Kind::kUndefined;
  static constexpr const char* name = "undefined";
};
template <>
struct traits<Null> {
  static constexpr Kind kKind = Kind::kNull;
  static constexpr const char* name = "null";
};
template <>
struct traits<bool> {
  static constexpr Kind kKind = Kind::kBoolean;
  static constexpr const char* name = "boolean";
};
template <>
struct traits<double> {
  static constexpr Kind kKind = Kind::kDouble;
  static constexpr const char* name = "double";
};
template <>
struct traits<std::string> {
  static constexpr Kind kKind = Kind::kString;
  static constexpr const char* name = "string";
};
template <>
struct traits<Array> {
  static constexpr Kind kKind = Kind::kArray;
  static constexpr const char* name = "array";
};
template <>
struct traits<Object> {
  static constexpr Kind kKind = Kind::kObject;
  static constexpr const char* name = "object";
};
template <>
struct traits<float> {
  static constexpr Kind kKind = Kind::kFloat;
  static constexpr const char* name = "float";
};
template <>
struct traits<std::int64_t> {
  static constexpr Kind kKind = Kind::kSigned;
  static constexpr const char* name = "signed integer";
};
template <>
struct traits<std::uint64_t> {
  static constexpr Kind kKind = Kind::kUnsigned;
  static constexpr const char* name = "unsigned integer";
};

// NOLINTEND(readability-identifier-naming)

}  // namespace foundation::json

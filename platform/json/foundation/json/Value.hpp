#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "foundation/json/traits.hpp"
#include "quenlith/export/json.hpp"

namespace foundation::json {

/// A type that a value can hold.
template <typename T>
concept Alternative = requires {
  traits<T>::kKind;
};

/// A type that stands for one of the held types and is converted to it without loss: a text, or a
/// whole number. Pointers, characters and other things that C++ would turn into a number or a
/// boolean are no JSON values.
template <typename T>
concept TextLike = !Alternative<T> && !std::same_as<T, std::nullptr_t> &&
                   std::convertible_to<const T&, std::string_view>;

template <typename T>
concept CharacterLike = std::same_as<T, char> || std::same_as<T, wchar_t> ||
    std::same_as<T, char8_t> || std::same_as<T, char16_t> || std::same_as<T, char32_t>;

template <typename T>
concept WholeNumber = std::integral<T> && !Alternative<T> && !CharacterLike<T>;

/// A JSON value: one of ten kinds.
///
/// Two values are equal when they have the same kind (1 and 1.0 are not) and hold equal things;
/// a NaN equals a NaN, so that every value equals its own copy. Copying, comparing, hashing and
/// destroying are loops: the depth of a value is bounded by memory only. Strings and keys are
/// UTF-8, which is not checked. A moved-from value is of the undefined kind.
class QUENLITH_JSON_EXPORT Value {
 public:
  /// Makes a value of the undefined kind.
  Value() noexcept = default;

  Value(const Value& other);
  Value(Value&& other) noexcept;
  Value& operator=(const Value& other);
  Value& operator=(Value&& other) noexcept;
  ~Value();

  /// Makes a value that holds `held`.
  template <Alternative T>
  Value(T held) : data(std::move(held)) {}

  /// Makes a value of the string kind.
  template <typename T>
  requires TextLike<std::remove_cvref_t<T>> Value(const T& text)
      : data(std::string(std::string_view(text))) {}

  /// Makes a value of the signed or unsigned integer kind, after the signedness of T.
  template <WholeNumber T>
  Value(T number)
      : data(static_cast<std::conditional_t<std::signed_integral<T>, std::int64_t, std::uint64_t>>(
            number)) {}

  Kind kind() const noexcept { return static_cast<Kind>(data.index()); }

  template <Alternative T>
  bool is() const noexcept {
    return std::holds_alternative<T>(data);
  }

  /// Returns what is held.
  ///
  /// Nothing is converted. Throws std::runtime_error "invalid conversion: HELD to WANTED" with
  /// the names of the traits when another kind is held.
  template <Alternative T>
  const T& get() const {
    requireKind(traits<T>::kKind);
    return *std::get_if<T>(&data);
  }

  template <Alternative T>
  T& get() {
    requireKind(traits<T>::kKind);
    return *std::get_if<T>(&data);
  }

  /// Returns what is held, or null when another kind is.
  template <Alternative T>
  const T* getIf() const noexcept {
    return std::get_if<T>(&data);
  }

  template <Alternative T>
  T* getIf() noexcept {
    return std::get_if<T>(&data);
  }

  /// Returns a hash that is the same for equal values.
  std::size_t hash() const;

  void swap(Value& other) noexcept { data.swap(other.data); }

  friend QUENLITH_JSON_EXPORT bool operator==(const Value& left, const Value& right);
  friend void swap(Value& left, Value& right) noexcept { left.swap(right); }

 private:
  using Data = std::variant<Undefined, Null, bool, double, std::string, Array, Object, float,
                            std::int64_t, std::uint64_t>;

  void requireKind(Kind wanted) const {
    if (kind() != wanted) {
      throwInvalidConversion(wanted);
    }
  }

  [[noreturn]] void throwInvalidConversion(Kind wanted) const;

  // Each loop below looks at one node at a time and keeps the containers that are still to be
  // looked into on a list of its own.
  struct Loops;

  Data data;
};

/// Returns the name that the traits give to the type of `kind`.
QUENLITH_JSON_EXPORT const char* nameOf(Kind kind) noexcept;

}  // namespace foundation::json

template <>
struct std::hash<foundation::json::Value> {
  std::size_t operator()(const foundation::json::Value& value) const { return value.hash(); }
};

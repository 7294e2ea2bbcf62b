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

/// A type that a value can contain.
template <typename T>
concept Alternative = requires {
  traits<T>::kKind;
};

/// A type that converts to std::string_view, but is not an alternative itself.
template <typename T>
concept TextLike = !Alternative<T> && !std::same_as<T, std::nullptr_t> &&
                   std::convertible_to<const T&, std::string_view>;

/// A character type. C++ counts these as integers; they do not convert to a JSON number.
template <typename T>
concept CharacterLike = std::same_as<T, char> || std::same_as<T, wchar_t> ||
    std::same_as<T, char8_t> || std::same_as<T, char16_t> || std::same_as<T, char32_t>;

/// An integer type that is neither an alternative nor a character type.
template <typename T>
concept WholeNumber = std::integral<T> && !Alternative<T> && !CharacterLike<T>;

/// A JSON value: one of ten kinds.
///
/// Two values are equal when they have the same kind (an integer 1 does not equal a double 1.0) and
/// equal contents; a NaN equals a NaN, so that every value equals its own copy. Copying, comparing,
/// hashing and destroying are loops: the depth of a value is bounded by memory only. Strings and
/// keys are UTF-8, which is not checked. A moved-from value is of the undefined kind.
class QUENLITH_JSON_EXPORT Value {
 public:
  /// Makes a value of the undefined kind.
  Value() noexcept = default;

  Value(const Value& other);
  Value(Value&& other) noexcept;
  Value& operator=(const Value& other);
  Value& operator=(Value&& other) noexcept;
  ~Value();

  /// Makes a value that contains `content`. A template, so that a pointer does not convert to bool.
  template <Alternative T>
  Value(T content) : data(std::move(content)) {}

  /// Makes a value of the string kind.
  template <typename T>
  requires TextLike<std::remove_cvref_t<T>> Value(const T& text)
      : data(std::string(std::string_view(text))) {}

  /// Makes a value of the signed or unsigned integer kind, depending on the signedness of T.
  template <WholeNumber T>
  Value(T number)
      : data(static_cast<std::conditional_t<std::signed_integral<T>, std::int64_t, std::uint64_t>>(
            number)) {}

  Kind kind() const noexcept { return static_cast<Kind>(data.index()); }

  template <Alternative T>
  bool is() const noexcept {
    return std::holds_alternative<T>(data);
  }

  /// Returns the content, which must be a T: nothing is converted.
  ///
  /// Throws std::runtime_error "invalid conversion: ACTUAL to WANTED", with the names from the
  /// traits, when the value is of another kind.
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

  /// Returns the content, or null when the value is of another kind.
  template <Alternative T>
  const T* getIf() const noexcept {
    return std::get_if<T>(&data);
  }

  template <Alternative T>
  T* getIf() noexcept {
    return std::get_if<T>(&data);
  }

  /// Returns a hash that is the same for equal values. Linear; throws std::bad_alloc.
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

  // The helpers of the loops over a tree of values. Each handles one node and appends the
  // containers whose children are still to be visited to a list.
  struct Loops;

  Data data;
};

/// Returns the name of `kind`, as its traits define it.
QUENLITH_JSON_EXPORT const char* nameOf(Kind kind) noexcept;

}  // namespace foundation::json

template <>
struct std::hash<foundation::json::Value> {
  std::size_t operator()(const foundation::json::Value& value) const { return value.hash(); }
};

#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "cppmicroservices/FrameworkExport.h"

namespace cppmicroservices {

class Any;

/// Writes `value` to `os`: what `Any::ToString` calls. A range that cannot be written as a whole
/// becomes `[a,b,c]`. Specialise it for a type of one's own.
template <class T>
std::ostream& any_value_to_string(std::ostream& os, const T& value);

/// Like the general form, but with 12 significant digits.
QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& any_value_to_string(std::ostream& os, double value);
QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& any_value_to_string(std::ostream& os, float value);

/// Like the general form; an empty value writes nothing.
QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& any_value_to_string(std::ostream& os,
                                                                   const Any& value);

template <typename ValueType>
ValueType* any_cast(Any* operand);
template <typename ValueType>
const ValueType* any_cast(const Any* operand);

/// Holds one copyable value of any type, or nothing.
class QUENLITH_CPPMICROSERVICES_EXPORT Any {
 public:
  Any() = default;
  Any(const Any& other) : content(other.content ? other.content->clone() : nullptr) {}
  Any(Any&& other) noexcept = default;

  /// Holds `value`. An array is refused: write `std::string("text")`.
  template <typename ValueType>
  requires(!std::is_same_v<Any, std::decay_t<ValueType>> &&
           !std::is_array_v<std::remove_reference_t<ValueType>>) Any(ValueType&& value)
      : content(std::make_unique<Holder<std::decay_t<ValueType>>>(std::forward<ValueType>(value))) {
  }

  Any& operator=(const Any& other) {
    Any(other).Swap(*this);
    return *this;
  }
  Any& operator=(Any&& other) noexcept = default;

  Any& Swap(Any& other) {
    std::swap(content, other.content);
    return *this;
  }

  bool Empty() const { return content == nullptr; }

  /// Returns the type of the value, `typeid(void)` when empty.
  const std::type_info& Type() const { return content ? content->type() : typeid(void); }

  /// Returns the value as text. Throws `std::logic_error` when empty.
  std::string ToString() const;

  /// Like `ToString`, but an empty object gives an empty text.
  std::string ToStringNoExcept() const;

  /// Says whether both hold values of the same type that compare equal, or nothing. Values of a
  /// type without `operator==` are never equal.
  bool operator==(const Any& other) const;

  /// Like the comparison of two objects, but with a plain value.
  template <typename ValueType>
  requires(!std::is_same_v<Any, ValueType>) bool operator==(const ValueType& value) const {
    const ValueType* mine = any_cast<ValueType>(this);
    return mine != nullptr && Holder<ValueType>::equal(*mine, value);
  }

 private:
  class HolderBase {
   public:
    virtual ~HolderBase() = default;
    virtual const std::type_info& type() const = 0;
    virtual std::unique_ptr<HolderBase> clone() const = 0;
    virtual void print(std::ostream& os) const = 0;
    virtual bool equals(const HolderBase& other) const = 0;
  };

  template <typename ValueType>
  class Holder final : public HolderBase {
   public:
    template <typename Source>
    explicit Holder(Source&& source) : value(std::forward<Source>(source)) {}

    const std::type_info& type() const override { return typeid(ValueType); }
    std::unique_ptr<HolderBase> clone() const override { return std::make_unique<Holder>(value); }
    void print(std::ostream& os) const override { any_value_to_string(os, value); }
    bool equals(const HolderBase& other) const override {
      return equal(value, static_cast<const Holder&>(other).value);
    }

    static bool equal(const ValueType& left, const ValueType& right) {
      if constexpr (requires { static_cast<bool>(left == right); }) {
        return left == right;
      } else {
        return false;
      }
    }

    ValueType value;
  };

  template <typename ValueType>
  friend ValueType* any_cast(Any* operand);
  template <typename ValueType>
  friend const ValueType* any_cast(const Any* operand);
  friend std::ostream& any_value_to_string(std::ostream& os, const Any& value);

  std::unique_ptr<HolderBase> content;
};

/// Tells that an `Any` does not hold the type asked for.
class QUENLITH_CPPMICROSERVICES_EXPORT BadAnyCastException : public std::bad_cast {
 public:
  explicit BadAnyCastException(std::string message = "");
  ~BadAnyCastException() override;
  const char* what() const noexcept override;

 private:
  std::string message;
};

namespace detail {
[[noreturn]] QUENLITH_CPPMICROSERVICES_EXPORT void throwBadAnyCast(const std::type_info& held,
                                                                   const std::type_info& wanted);
}

/// Returns the value in place, null when `operand` is null or holds another type.
template <typename ValueType>
ValueType* any_cast(Any* operand) {
  if (operand == nullptr || operand->Type() != typeid(ValueType)) return nullptr;
  return &static_cast<Any::Holder<ValueType>*>(operand->content.get())->value;
}
template <typename ValueType>
const ValueType* any_cast(const Any* operand) {
  if (operand == nullptr || operand->Type() != typeid(ValueType)) return nullptr;
  return &static_cast<const Any::Holder<ValueType>*>(operand->content.get())->value;
}

/// Returns the value in place. Throws `BadAnyCastException` when it is of another type.
template <typename ValueType>
const ValueType& ref_any_cast(const Any& operand) {
  const ValueType* value = any_cast<ValueType>(&operand);
  if (value == nullptr) detail::throwBadAnyCast(operand.Type(), typeid(ValueType));
  return *value;
}
template <typename ValueType>
ValueType& ref_any_cast(Any& operand) {
  ValueType* value = any_cast<ValueType>(&operand);
  if (value == nullptr) detail::throwBadAnyCast(operand.Type(), typeid(ValueType));
  return *value;
}

/// Returns a copy of the value. Throws `BadAnyCastException` when it is of another type.
template <typename ValueType>
ValueType any_cast(const Any& operand) {
  return ref_any_cast<std::remove_cvref_t<ValueType>>(operand);
}

template <class T>
std::ostream& any_value_to_string(std::ostream& os, const T& value) {
  if constexpr (requires { os << value; }) {
    return os << value;
  } else {
    const char* separator = "";
    os << '[';
    for (const auto& element : value) {
      any_value_to_string(os << separator, element);
      separator = ",";
    }
    return os << ']';
  }
}

}  // namespace cppmicroservices

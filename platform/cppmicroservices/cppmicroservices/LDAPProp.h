#pragma once

#include <sstream>
#include <string>

#include "cppmicroservices/Any.h"
#include "cppmicroservices/FrameworkExport.h"

namespace cppmicroservices {

/// The text of a filter that is put together from `LDAPProp` objects with `!`, `&&` and `||`.
class QUENLITH_CPPMICROSERVICES_EXPORT LDAPPropExpr {
 public:
  /// Makes the empty expression. Joining another one to it gives that other one.
  LDAPPropExpr() = default;
  explicit LDAPPropExpr(std::string expr);

  /// Negates this expression, unless it is empty, and returns it.
  LDAPPropExpr& operator!();

  operator std::string() const { return text; }
  bool IsNull() const { return text.empty(); }

  LDAPPropExpr& operator|=(const LDAPPropExpr& right);
  LDAPPropExpr& operator&=(const LDAPPropExpr& right);

 private:
  void join(char sign, const LDAPPropExpr& right);

  std::string text;
};

/// Builds the text of an `LDAPFilter`: `LDAPProp("name") == "Ben" && !(LDAPProp("count") == 1)`.
///
/// A value is written as `operator<<` writes it, a `bool` as `true` or `false`. Nothing is escaped,
/// so that `*` in a value is the wildcard. An empty `Any` throws `std::logic_error`.
class QUENLITH_CPPMICROSERVICES_EXPORT LDAPProp {
 public:
  /// Throws `std::invalid_argument` when the name is empty.
  LDAPProp(std::string property);
  LDAPProp(const LDAPProp& other) = default;
  LDAPProp& operator=(const LDAPProp& other) = delete;
  ~LDAPProp() = default;

  LDAPPropExpr operator==(const std::string& value) const { return unlessEmpty("=", value); }
  LDAPPropExpr operator==(const Any& value) const { return unlessEmpty("=", textOf(value)); }
  LDAPPropExpr operator==(bool value) const { return condition("=", value ? "true" : "false"); }
  template <class T>
  LDAPPropExpr operator==(const T& value) const {
    return condition("=", textOf(value));
  }

  /// Tests that the property is present.
  operator LDAPPropExpr() const { return condition("=", "*"); }
  /// Tests that the property is absent.
  LDAPPropExpr operator!() const;

  LDAPPropExpr operator!=(const std::string& value) const;
  LDAPPropExpr operator!=(const Any& value) const { return *this != textOf(value); }
  template <class T>
  LDAPPropExpr operator!=(const T& value) const {
    return *this != textOf(value);
  }

  LDAPPropExpr operator>=(const std::string& value) const { return unlessEmpty(">=", value); }
  LDAPPropExpr operator>=(const Any& value) const { return unlessEmpty(">=", textOf(value)); }
  template <class T>
  LDAPPropExpr operator>=(const T& value) const {
    return unlessEmpty(">=", textOf(value));
  }

  LDAPPropExpr operator<=(const std::string& value) const { return unlessEmpty("<=", value); }
  LDAPPropExpr operator<=(const Any& value) const { return unlessEmpty("<=", textOf(value)); }
  template <class T>
  LDAPPropExpr operator<=(const T& value) const {
    return unlessEmpty("<=", textOf(value));
  }

  /// Compares without regard to case and spaces.
  LDAPPropExpr Approx(const std::string& value) const { return unlessEmpty("~=", value); }
  LDAPPropExpr Approx(const Any& value) const { return unlessEmpty("~=", textOf(value)); }
  template <class T>
  LDAPPropExpr Approx(const T& value) const {
    return unlessEmpty("~=", textOf(value));
  }

 private:
  static std::string textOf(const Any& value) { return value.ToString(); }
  template <class T>
  static std::string textOf(const T& value) {
    std::ostringstream text;
    text << value;
    return text.str();
  }

  LDAPPropExpr unlessEmpty(const char* sign, const std::string& value) const;
  LDAPPropExpr condition(const char* sign, const std::string& value) const;

  std::string property;
};

}  // namespace cppmicroservices

/// Join two expressions; an empty one is left out.
QUENLITH_CPPMICROSERVICES_EXPORT cppmicroservices::LDAPPropExpr operator&&(
    const cppmicroservices::LDAPPropExpr& left, const cppmicroservices::LDAPPropExpr& right);
QUENLITH_CPPMICROSERVICES_EXPORT cppmicroservices::LDAPPropExpr operator||(
    const cppmicroservices::LDAPPropExpr& left, const cppmicroservices::LDAPPropExpr& right);

#pragma once

#include <iosfwd>
#include <memory>
#include <string>

#include "cppmicroservices/AnyMap.h"
#include "cppmicroservices/FrameworkExport.h"

namespace cppmicroservices {

class Bundle;
class ServiceReferenceBase;
namespace detail {
class LdapExpression;
}

/// A condition on properties, written as in RFC 1960: `(&(priority=default)(!(lang=c*)))`.
///
/// Operators are `=` (with `*` for any text, `=*` for presence), `~=` (without regard to case
/// and blanks), `>=`, `<=`, `&`, `|` and `!`; a backslash escapes the character that follows.
/// Balanced parentheses in a value need no backslash: `(name=f(x))`.
///
/// Copies share the parsed filter. May be used from several threads.
class QUENLITH_CPPMICROSERVICES_EXPORT LDAPFilter {
 public:
  /// Makes the empty filter, which matches nothing and whose text is empty.
  LDAPFilter() = default;

  /// Parses `filter`. Throws `std::invalid_argument` when it cannot: its text names the position.
  /// Filters nested deeper than 1000 levels are refused.
  LDAPFilter(const std::string& filter);

  /// Says whether the filter is not the empty one.
  explicit operator bool() const { return expression != nullptr; }

  /// Says whether the filter matches; keys are compared without regard to case. Throws
  /// `std::runtime_error` when keys of `dictionary` differ in case only.
  bool Match(const ServiceReferenceBase& reference) const;
  bool Match(const Bundle& bundle) const;
  bool Match(const AnyMap& dictionary) const;

  /// Like `Match`, but keys are compared with regard to case.
  bool MatchCase(const AnyMap& dictionary) const;

  /// Returns the filter as text, without insignificant blanks.
  std::string ToString() const;

  /// Says whether both filters have the same text.
  bool operator==(const LDAPFilter& other) const;

 private:
  std::shared_ptr<const detail::LdapExpression> expression;
};

QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& operator<<(std::ostream& os,
                                                          const LDAPFilter& filter);

}  // namespace cppmicroservices

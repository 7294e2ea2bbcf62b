#pragma once

#include <string>
#include <vector>

#include "cppmicroservices/AnyMap.h"

namespace cppmicroservices::detail {

/// A parsed filter: one condition on one property, or conditions joined by `&`, `|` or `!`.
///
/// Nested at most `kMaximumDepth` deep, which bounds the recursion over it.
class LdapExpression {
 public:
  static constexpr int kMaximumDepth = 1000;

  enum class Operator { kAnd, kOr, kNot, kEqual, kApproximate, kAtLeast, kAtMost };
  enum class KeyCase { kIgnored, kKept };

  /// Says whether the expression holds for `properties`. Where case is ignored the keys of
  /// `properties` must be compared without regard to it.
  bool matches(const AnyMap& properties, KeyCase keyCase) const;

  /// Appends the expression in its shortest form to `text`.
  void print(std::string& text) const;

  Operator operation = Operator::kAnd;
  std::vector<LdapExpression> operands;

  std::string attribute;
  // The value, split at each `*`: one piece without `*`, two empty pieces for `*` alone.
  std::vector<std::string> pieces;

 private:
  bool isPresence() const;
  void printValue(std::string& text) const;
};

/// Parses a filter. Throws `std::invalid_argument`: its text names the problem and its
/// 1-based position in bytes.
LdapExpression parseLdapExpression(const std::string& text);

/// Says whether `value` meets the condition `operation` with `pieces`. A list does when one of its
/// elements does; a value that is neither text, number, boolean nor list never does.
bool ldapValueMatches(const Any& value, LdapExpression::Operator operation,
                      const std::vector<std::string>& pieces);

}  // namespace cppmicroservices::detail

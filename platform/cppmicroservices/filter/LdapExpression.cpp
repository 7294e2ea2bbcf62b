#include "filter/LdapExpression.hpp"

#include <algorithm>
#include <string_view>

namespace cppmicroservices::detail {

namespace {

std::string_view signOf(LdapExpression::Operator operation) {
  switch (operation) {
    case LdapExpression::Operator::kAnd:
      return "&";
    case LdapExpression::Operator::kOr:
      return "|";
    case LdapExpression::Operator::kNot:
      return "!";
    case LdapExpression::Operator::kEqual:
      return "=";
    case LdapExpression::Operator::kApproximate:
      return "~=";
    case LdapExpression::Operator::kAtLeast:
      return ">=";
    default:
      return "<=";
  }
}

}  // namespace

bool LdapExpression::matches(const AnyMap& properties, KeyCase keyCase) const {
  const auto holds = [&](const LdapExpression& operand) {
    return operand.matches(properties, keyCase);
  };
  switch (operation) {
    case Operator::kAnd:
      return std::all_of(operands.begin(), operands.end(), holds);
    case Operator::kOr:
      return std::any_of(operands.begin(), operands.end(), holds);
    case Operator::kNot:
      return !holds(operands.front());
    default:
      const auto entry = properties.find(attribute);
      if (entry == properties.end()) return false;
      if (keyCase == KeyCase::kKept && entry->first != attribute) return false;
      if (isPresence()) return !entry->second.Empty();
      return ldapValueMatches(entry->second, operation, pieces);
  }
}

void LdapExpression::print(std::string& text) const {
  text += '(';
  if (operands.empty()) {
    text += attribute;
    text += signOf(operation);
    printValue(text);
  } else {
    text += signOf(operation);
    for (const LdapExpression& operand : operands) operand.print(text);
  }
  text += ')';
}

bool LdapExpression::isPresence() const {
  return operation == Operator::kEqual && pieces.size() == 2 && pieces[0].empty() &&
         pieces[1].empty();
}

void LdapExpression::printValue(std::string& text) const {
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    if (i > 0) text += '*';
    for (const char character : pieces[i]) {
      if (std::string_view("\\*()").find(character) != std::string_view::npos) text += '\\';
      text += character;
    }
  }
}

}  // namespace cppmicroservices::detail

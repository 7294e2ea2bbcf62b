#include "cppmicroservices/LDAPFilter.h"

#include <ostream>

#include "cppmicroservices/Bundle.h"
#include "cppmicroservices/ServiceReferenceBase.h"
#include "filter/LdapExpression.hpp"
#include "properties/text.hpp"

namespace cppmicroservices {

using KeyCase = detail::LdapExpression::KeyCase;

namespace {

AnyMap withKeysIgnoringCase(const AnyMap& dictionary) {
  AnyMap result;
  for (const auto& entry : dictionary) {
    if (!result.insert(entry).second) detail::throwCaseVariants(entry.first);
  }
  return result;
}

}  // namespace

LDAPFilter::LDAPFilter(const std::string& filter)
    : expression(std::make_shared<detail::LdapExpression>(detail::parseLdapExpression(filter))) {}

bool LDAPFilter::Match(const ServiceReferenceBase& reference) const {
  const auto properties = reference.properties();
  return properties != nullptr && Match(*properties);
}

bool LDAPFilter::Match(const Bundle& bundle) const {
  return expression && Match(bundle.GetHeaders());
}

bool LDAPFilter::Match(const AnyMap& dictionary) const {
  if (!expression) return false;
  if (dictionary.GetType() == AnyMap::UNORDERED_MAP_CASEINSENSITIVE_KEYS) {
    return expression->matches(dictionary, KeyCase::kIgnored);
  }
  return expression->matches(withKeysIgnoringCase(dictionary), KeyCase::kIgnored);
}

bool LDAPFilter::MatchCase(const AnyMap& dictionary) const {
  return expression && expression->matches(withKeysIgnoringCase(dictionary), KeyCase::kKept);
}

std::string LDAPFilter::ToString() const {
  std::string text;
  if (expression) expression->print(text);
  return text;
}

bool LDAPFilter::operator==(const LDAPFilter& other) const {
  return ToString() == other.ToString();
}

std::ostream& operator<<(std::ostream& os, const LDAPFilter& filter) {
  return os << filter.ToString();
}

}  // namespace cppmicroservices

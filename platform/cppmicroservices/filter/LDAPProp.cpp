#include "cppmicroservices/LDAPProp.h"

#include <stdexcept>
#include <utility>

namespace cppmicroservices {

LDAPPropExpr::LDAPPropExpr(std::string expr) : text(std::move(expr)) {}

LDAPPropExpr& LDAPPropExpr::operator!() {
  if (!text.empty()) text = "(!" + text + ")";
  return *this;
}

LDAPPropExpr& LDAPPropExpr::operator|=(const LDAPPropExpr& right) {
  join('|', right);
  return *this;
}

LDAPPropExpr& LDAPPropExpr::operator&=(const LDAPPropExpr& right) {
  join('&', right);
  return *this;
}

void LDAPPropExpr::join(char sign, const LDAPPropExpr& right) {
  if (right.text.empty()) return;
  text = text.empty() ? right.text : std::string("(") + sign + text + right.text + ")";
}

LDAPProp::LDAPProp(std::string property) : property(std::move(property)) {
  if (this->property.empty()) throw std::invalid_argument("the name of a property is empty");
}

LDAPPropExpr LDAPProp::operator!() const {
  LDAPPropExpr present = *this;
  return !present;
}

LDAPPropExpr LDAPProp::operator!=(const std::string& value) const {
  LDAPPropExpr equal = unlessEmpty("=", value);
  return !equal;
}

LDAPPropExpr LDAPProp::unlessEmpty(const char* sign, const std::string& value) const {
  return value.empty() ? LDAPPropExpr() : condition(sign, value);
}

LDAPPropExpr LDAPProp::condition(const char* sign, const std::string& value) const {
  return LDAPPropExpr("(" + property + sign + value + ")");
}

}  // namespace cppmicroservices

cppmicroservices::LDAPPropExpr operator&&(const cppmicroservices::LDAPPropExpr& left,
                                          const cppmicroservices::LDAPPropExpr& right) {
  cppmicroservices::LDAPPropExpr both = left;
  return both &= right;
}

cppmicroservices::LDAPPropExpr operator||(const cppmicroservices::LDAPPropExpr& left,
                                          const cppmicroservices::LDAPPropExpr& right) {
  cppmicroservices::LDAPPropExpr either = left;
  return either |= right;
}

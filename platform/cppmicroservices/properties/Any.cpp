#include "cppmicroservices/Any.h"

#include <iomanip>
#include <sstream>
#include <stdexcept>

#include "cppmicroservices/ServiceInterface.h"

namespace cppmicroservices {

namespace {

constexpr int kSignificantDigits = 12;

std::ostream& printNumber(std::ostream& os, double value) {
  const std::streamsize precision = os.precision();
  return os << std::setprecision(kSignificantDigits) << value << std::setprecision(int(precision));
}

}  // namespace

std::ostream& any_value_to_string(std::ostream& os, double value) {
  return printNumber(os, value);
}

std::ostream& any_value_to_string(std::ostream& os, float value) {
  return printNumber(os, double{value});
}

std::ostream& any_value_to_string(std::ostream& os, const Any& value) {
  if (!value.Empty()) value.content->print(os);
  return os;
}

std::string Any::ToString() const {
  if (Empty()) throw std::logic_error("cannot turn an empty Any into text");
  return ToStringNoExcept();
}

std::string Any::ToStringNoExcept() const {
  std::ostringstream text;
  any_value_to_string(text, *this);
  return text.str();
}

bool Any::operator==(const Any& other) const {
  if (Type() != other.Type()) return false;
  return Empty() || content->equals(*other.content);
}

BadAnyCastException::BadAnyCastException(std::string text) : message(std::move(text)) {}
BadAnyCastException::~BadAnyCastException() = default;

const char* BadAnyCastException::what() const noexcept {
  return message.c_str();
}

void detail::throwBadAnyCast(const std::type_info& held, const std::type_info& wanted) {
  throw BadAnyCastException("an Any that holds " + demangledName(held) + " was cast to " +
                            demangledName(wanted));
}

}  // namespace cppmicroservices

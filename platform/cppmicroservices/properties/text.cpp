#include "properties/text.hpp"

#include <exception>
#include <stdexcept>

namespace cppmicroservices::detail {

std::string currentExceptionText() {
  try {
    throw;
  } catch (const std::exception& exception) {
    return exception.what();
  } catch (...) {
    return "an exception that is not a std::exception";
  }
}

std::string textOf(const std::exception_ptr& exception) {
  try {
    std::rethrow_exception(exception);
  } catch (...) {
    return currentExceptionText();
  }
}

void throwCaseVariants(const std::string& key) {
  throw std::runtime_error("keys of the properties differ from \"" + key + "\" in case only");
}

}  // namespace cppmicroservices::detail

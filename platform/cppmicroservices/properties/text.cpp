#include "properties/text.hpp"

#include <exception>

namespace cppmicroservices::detail {

std::string currentExceptionText() {
  try {
    throw;
  } catch (const std::exception& exception) {
    return exception.what();
  } catch (...) {
    return "an exception that is no std::exception";
  }
}

}  // namespace cppmicroservices::detail

#include "tessera/diagnostics/describeException.hpp"

#include <exception>

namespace tessera::diagnostics {

std::string describeException() {
  try {
    throw;
  } catch (const std::exception& error) {
    return error.what();
  } catch (...) {
    return "an exception of a kind that is not known";
  }
}

}  // namespace tessera::diagnostics

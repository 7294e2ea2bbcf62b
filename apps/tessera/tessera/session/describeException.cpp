#include "tessera/session/describeException.hpp"

#include <exception>

namespace tessera::session {

std::string describeException() {
  try {
    throw;
  } catch (const std::exception& error) {
    return error.what();
  } catch (...) {
    return "an exception of a kind that is not known";
  }
}

}  // namespace tessera::session

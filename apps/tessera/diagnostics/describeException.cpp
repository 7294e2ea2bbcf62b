#include "tessera/diagnostics/describeException.hpp"

#include <exception>
#include <new>

#include "tessera/diagnostics/Problem.hpp"

namespace tessera::diagnostics {
namespace {

constexpr std::string_view kNoMemory =
    "tessera: error: there is not enough memory; run fewer workers (-j), or try again with fewer "
    "or smaller files";

/// Returns the message about the exception that is being handled. Throws std::bad_alloc, also when
/// that is the exception.
std::string messageOfException() {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const ProblemError& error) {
    return error.what();
  } catch (...) {
    return describe({.file = "tessera",
                     .place = {},
                     .what = describeException(),
                     .remedy = "report it, or try again with fewer or smaller files"});
  }
}

}  // namespace

std::string describeException() {
  try {
    throw;
  } catch (const std::exception& error) {
    return error.what();
  } catch (...) {
    return "an exception of a kind that is not known";
  }
}

void reportException(const std::function<void(std::string_view message)>& report) {
  std::string message;
  try {
    message = messageOfException();
  } catch (const std::bad_alloc&) {
    return report(kNoMemory);
  }
  report(message);
}

}  // namespace tessera::diagnostics

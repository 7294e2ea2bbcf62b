#pragma once

#include <string>

namespace cppmicroservices::detail {

/// Returns the small form of an ASCII letter, any other character as it is, whatever the locale.
constexpr char lowerCase(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                              : character;
}

/// Returns what the exception that is being handled says.
std::string currentExceptionText();

}  // namespace cppmicroservices::detail

#pragma once

#include <string>

namespace cppmicroservices::detail {

/// Returns an ASCII letter in lower case, any other character unchanged, whatever the locale.
constexpr char lowerCase(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                              : character;
}

/// Returns the text of the exception that is being handled.
std::string currentExceptionText();

/// Throws the exception for properties whose keys differ from `key` in case only.
[[noreturn]] void throwCaseVariants(const std::string& key);

}  // namespace cppmicroservices::detail

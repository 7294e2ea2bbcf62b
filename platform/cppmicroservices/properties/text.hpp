#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace cppmicroservices::detail {

/// Returns an ASCII letter in lower case, any other character unchanged, whatever the locale.
constexpr char lowerCase(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                              : character;
}

/// Returns the identifier of an interface without the `::` that it may begin with.
constexpr std::string_view withoutGlobalScope(std::string_view interfaceId) {
  return interfaceId.starts_with("::") ? interfaceId.substr(2) : interfaceId;
}

/// Returns the text of the exception that is being handled.
std::string currentExceptionText();

/// Returns the text of `exception`, which must not be null.
std::string textOf(const std::exception_ptr& exception);

/// Throws the exception for properties whose keys differ from `key` in case only.
[[noreturn]] void throwCaseVariants(const std::string& key);

}  // namespace cppmicroservices::detail

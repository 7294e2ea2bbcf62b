#include <algorithm>
#include <charconv>
#include <list>
#include <string_view>
#include <type_traits>

#include "filter/LdapExpression.hpp"
#include "properties/text.hpp"

namespace cppmicroservices::detail {

namespace {

using Operator = LdapExpression::Operator;
using Pieces = std::vector<std::string>;

// Matches each piece at its first occurrence in the rest: a later one could not match more.
bool matchesPattern(std::string_view value, const Pieces& pieces) {
  if (pieces.size() == 1) return value == pieces.front();
  if (!value.starts_with(pieces.front())) return false;
  value.remove_prefix(pieces.front().size());
  for (std::size_t i = 1; i + 1 < pieces.size(); ++i) {
    const std::size_t place = value.find(pieces[i]);
    if (place == std::string_view::npos) return false;
    value.remove_prefix(place + pieces[i].size());
  }
  return value.ends_with(pieces.back());
}

std::string withoutCaseAndBlanks(const std::string& text) {
  std::string result;
  for (const char character : text) {
    if (character != ' ' && (character < '\t' || character > '\r')) result += lowerCase(character);
  }
  return result;
}

bool matchesApproximately(const std::string& value, const std::string& wanted) {
  return withoutCaseAndBlanks(value) == withoutCaseAndBlanks(wanted);
}

template <class Value>
bool inOrder(const Value& value, Operator operation, const Value& bound) {
  return operation == Operator::kAtLeast ? value >= bound : value <= bound;
}

// A * matches any text after = only; after the other operators it matches nothing.
bool textMatches(const std::string& value, Operator operation, const Pieces& pieces) {
  if (operation == Operator::kEqual) return matchesPattern(value, pieces);
  if (pieces.size() > 1) return false;
  if (operation == Operator::kApproximate) return matchesApproximately(value, pieces.front());
  return inOrder(value, operation, pieces.front());
}

bool isEquality(Operator operation) {
  return operation == Operator::kEqual || operation == Operator::kApproximate;
}

bool truthMatches(bool value, Operator operation, const Pieces& pieces) {
  return isEquality(operation) && pieces.size() == 1 &&
         matchesApproximately(value ? "true" : "false", pieces.front());
}

// Compares with the number at the start of the filter's value and ignores what follows it.
template <class Number>
bool numberMatches(Number value, Operator operation, const Pieces& pieces) {
  const std::string& text = pieces.front();
  // Exact for every 64-bit integer.
  long double bound = 0;
  const std::size_t begin = std::min(text.find_first_not_of(" +"), text.size());
  if (std::from_chars(text.data() + begin, text.data() + text.size(), bound).ec != std::errc()) {
    return false;
  }
  if constexpr (std::is_floating_point_v<Number>) bound = static_cast<Number>(bound);
  const auto exact = static_cast<long double>(value);
  return isEquality(operation) ? exact == bound : inOrder(exact, operation, bound);
}

// Says whether `value` is of one of the types `Numbers` and, if so, whether it matches.
template <class... Numbers>
bool anyNumberMatches(const Any& value, Operator operation, const Pieces& pieces) {
  const auto matches = [&]<class Number>(const Number* number) {
    return number != nullptr && numberMatches(*number, operation, pieces);
  };
  return (matches(any_cast<Numbers>(&value)) || ...);
}

// Says whether `value` is one of the types `Lists` and, if so, whether an element matches.
template <class... Lists>
bool anyElementMatches(const Any& value, Operator operation, const Pieces& pieces) {
  const auto matches = [&]<class List>(const List* list) {
    return list != nullptr && std::any_of(list->begin(), list->end(), [&](const auto& element) {
             return ldapValueMatches(element, operation, pieces);
           });
  };
  return (matches(any_cast<Lists>(&value)) || ...);
}

}  // namespace

bool ldapValueMatches(const Any& value, Operator operation, const Pieces& pieces) {
  if (const auto* text = any_cast<std::string>(&value))
    return textMatches(*text, operation, pieces);
  if (const auto* literal = any_cast<const char*>(&value)) {
    return *literal != nullptr && textMatches(*literal, operation, pieces);
  }
  if (const auto* truth = any_cast<bool>(&value)) return truthMatches(*truth, operation, pieces);
  if (const auto* character = any_cast<char>(&value)) {
    return textMatches(std::string(1, *character), operation, pieces);
  }
  return anyNumberMatches<int, unsigned, long, unsigned long, long long, unsigned long long, short,
                          unsigned short, unsigned char, float, double>(value, operation, pieces) ||
         anyElementMatches<std::vector<std::string>, std::list<std::string>, std::vector<Any>>(
             value, operation, pieces);
}

}  // namespace cppmicroservices::detail

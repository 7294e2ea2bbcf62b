#include "tessera/check/suspects/likeness.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace tessera::check::suspects {

using namespace std::string_view_literals;

bool isWordUnit(char16_t unit) {
  const auto lower = static_cast<char16_t>(unit | 0x20U);
  const bool isDigit = unit >= u'0' && unit <= u'9';
  return isDigit || (lower >= u'a' && lower <= u'z') || unit == u'_' || unit >= 0x80;
}

bool isNameUnit(char16_t unit) {
  return isWordUnit(unit) || unit == u'-' || unit == u'.';
}

std::u16string_view wordAtStartOf(std::u16string_view text) {
  const auto wordEnd = std::ranges::find_if_not(text, isWordUnit);
  const auto length = static_cast<std::size_t>(wordEnd - text.begin());
  return text.substr(0, std::max<std::size_t>(length, 1));
}

bool areEqualExceptCase(std::u16string_view a, std::u16string_view b) {
  return std::ranges::equal(a, b, {}, {}, [](char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 0x20) : unit;
  });
}

std::u16string_view remarkAtEndOf(std::u16string_view text) {
  constexpr std::u16string_view kRemark = u"rem";
  const std::u16string_view before = text.substr(0, text.find_last_not_of(u" \t") + 1);
  if (before.size() == text.size() || before.size() < kRemark.size()) return {};
  const std::u16string_view word = before.substr(before.size() - kRemark.size());
  const char16_t unit =
      before.size() == word.size() ? u' ' : before[before.size() - word.size() - 1];
  return !isNameUnit(unit) && areEqualExceptCase(kRemark, word) ? word : u""sv;
}

bool looksLikeRange(std::u16string_view text) {
  const std::size_t digits = u"({<"sv.find(text.front()) != std::u16string_view::npos ? 1 : 0;
  const std::size_t end = text.find_first_not_of(u"0123456789 ,", digits);
  const std::u16string_view numbers = text.substr(0, end).substr(digits);
  return end != text.npos && u"])}>"sv.find(text[end]) != std::u16string_view::npos &&
         numbers.find(u',') != numbers.npos && numbers.find_first_of(u"0123456789") != numbers.npos;
}

bool looksLikeData(std::u16string_view text) {
  return u"([\""sv.find(text.front()) != std::u16string_view::npos &&
         text.find(u"\":") != text.npos;
}

std::u16string_view afterSeparator(std::u16string_view rest) {
  const bool isSeparated = !rest.empty() && u"-._"sv.find(rest.front()) != rest.npos;
  return rest.substr(isSeparated ? 1 : 0);
}

std::string_view expectedInJson(std::string_view reason) {
  constexpr std::array<std::pair<std::string_view, std::string_view>, 6> kExpected{{
      {"a key in quotes is missing", "a key in double quotes"},
      {"a ':' is missing", "\":\" after the key"},
      {"a value is missing", "a value"},
      {"a ',' or '}' is missing", "\",\" or \"}\""},
      {"a ',' or ']' is missing", "\",\" or \"]\""},
      {"a digit is missing", "a digit"},
  }};
  const auto found =
      std::ranges::find(kExpected, reason, &std::pair<std::string_view, std::string_view>::first);
  return found == kExpected.end() ? reason : found->second;
}

}  // namespace tessera::check::suspects

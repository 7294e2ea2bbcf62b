#include "oracle/support/show.hpp"

#include <algorithm>

namespace quenlith::oracle {

namespace {

constexpr std::size_t kEntriesBefore = 4;
constexpr std::size_t kEntriesBehind = 12;

void appendEscaped(std::string& out, char16_t unit) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  out += "\\u";
  for (unsigned shift = 16; shift > 0; shift -= 4) {
    out += kDigits[(static_cast<unsigned>(unit) >> (shift - 4U)) & 0xFU];
  }
}

void appendEntries(std::string& out, std::string_view title, const std::vector<std::string>& list,
                   std::size_t difference) {
  out += title;
  const std::size_t begin = difference - std::min(difference, kEntriesBefore);
  const std::size_t end = std::min(list.size(), difference + kEntriesBehind);
  for (std::size_t i = begin; i < end; ++i) {
    out += i < difference ? "    " : "  > ";
    out += list[i] + '\n';
  }
}

}  // namespace

std::string show(std::u16string_view text) {
  std::string out = "\"";
  for (const char16_t unit : text) {
    const bool plain = unit >= 0x20 && unit < 0x7F && unit != u'"' && unit != u'\\';
    if (plain) {
      out += static_cast<char>(unit);
    } else if (unit == u'"' || unit == u'\\') {
      out += '\\';
      out += static_cast<char>(unit);
    } else {
      appendEscaped(out, unit);
    }
  }
  return out + '"';
}

std::string showDifference(const std::vector<std::string>& expected,
                           const std::vector<std::string>& actual) {
  if (expected == actual) return {};
  const auto common = std::min(expected.size(), actual.size());
  std::size_t difference = 0;
  while (difference < common && expected[difference] == actual[difference]) ++difference;
  std::string out;
  appendEntries(out, "twin:\n", expected, difference);
  appendEntries(out, "real:\n", actual, difference);
  return out;
}

}  // namespace quenlith::oracle

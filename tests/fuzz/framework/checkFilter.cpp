#include <cppmicroservices/AnyMap.h>
#include <cppmicroservices/LDAPFilter.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/require.hpp"
#include "fuzz/targets.hpp"

namespace quenlith::fuzz {

using cppmicroservices::Any;
using cppmicroservices::AnyMap;
using cppmicroservices::LDAPFilter;

namespace {

bool isBlank(char byte) {
  return byte == ' ' || (byte >= '\t' && byte <= '\r');
}

/// A value of a filter, in which a wildcard is apart from an escaped star.
struct Pattern {
  struct Unit {
    char byte;
    bool isWildcard;
  };

  bool hasWildcard() const { return std::ranges::any_of(units, &Unit::isWildcard); }

  std::string text() const {
    std::string plain;
    for (const Unit& unit : units) plain += unit.byte;
    return plain;
  }

  // Tries every length that a wildcard may match; several in a row match what one does.
  bool matches(std::string_view value, std::size_t from = 0) const {
    if (from == units.size()) return value.empty();
    const bool isRepeated = from + 1 < units.size() && units[from + 1].isWildcard;
    if (units[from].isWildcard && isRepeated) return matches(value, from + 1);
    if (!units[from].isWildcard) {
      return !value.empty() && value.front() == units[from].byte &&
             matches(value.substr(1), from + 1);
    }
    for (std::size_t skipped = 0; skipped <= value.size(); ++skipped) {
      if (matches(value.substr(skipped), from + 1)) return true;
    }
    return false;
  }

  std::vector<Unit> units;
};

/// The properties that filters are matched with, by name.
struct Property {
  enum class Kind { kText, kNumber, kTruth, kTexts };
  const char* name;
  Kind kind;
  std::vector<std::string> texts;
};

const std::vector<Property>& properties() {
  static const std::vector<Property> kProperties = {{"a", Property::Kind::kText, {"ab*a(b)"}},
                                                    {"Name", Property::Kind::kText, {"Some Text"}},
                                                    {"n", Property::Kind::kNumber, {"-12"}},
                                                    {"t", Property::Kind::kTruth, {"true"}},
                                                    {"l", Property::Kind::kTexts, {"aa", "b", ""}}};
  return kProperties;
}

AnyMap makeProperties() {
  AnyMap map(AnyMap::UNORDERED_MAP_CASEINSENSITIVE_KEYS);
  for (const Property& property : properties()) {
    Any& value = map[property.name];
    if (property.kind == Property::Kind::kText) value = property.texts.front();
    if (property.kind == Property::Kind::kNumber) value = std::atoi(property.texts[0].c_str());
    if (property.kind == Property::Kind::kTruth) value = true;
    if (property.kind == Property::Kind::kTexts) value = property.texts;
  }
  return map;
}

std::string lowered(std::string text) {
  for (char& byte : text) {
    if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte - 'A' + 'a');
  }
  return text;
}

std::string withoutBlanks(std::string text) {
  std::erase_if(text, isBlank);
  return text;
}

bool isApproximately(const std::string& left, const std::string& right) {
  return lowered(withoutBlanks(left)) == lowered(withoutBlanks(right));
}

bool textMatches(const std::string& value, std::string_view sign, const Pattern& pattern) {
  if (sign == "=") return pattern.matches(value);
  if (pattern.hasWildcard()) return false;
  if (sign == "~=") return isApproximately(value, pattern.text());
  return sign == ">=" ? value >= pattern.text() : value <= pattern.text();
}

// The number that a text begins with; nothing if there is none.
std::optional<long double> numberAtStart(std::string text) {
  text.erase(0, std::min(text.find_first_not_of(" +"), text.size()));
  std::size_t end = text.starts_with('-') ? 1 : 0;
  const auto skipDigits = [&] {
    const std::size_t begin = end;
    while (end < text.size() && text[end] >= '0' && text[end] <= '9') ++end;
    return end - begin;
  };
  std::size_t digits = skipDigits();
  if (end < text.size() && text[end] == '.') {
    ++end;
    digits += skipDigits();
  }
  if (digits == 0) return std::nullopt;
  const std::size_t mantissa = end;
  if (end < text.size() && (text[end] == 'e' || text[end] == 'E')) {
    ++end;
    if (end < text.size() && (text[end] == '+' || text[end] == '-')) ++end;
    if (skipDigits() == 0) end = mantissa;
  }
  errno = 0;
  const long double value = std::strtold(text.substr(0, end).c_str(), nullptr);
  if (errno == ERANGE) return std::nullopt;
  return value;
}

bool numberMatches(const std::string& value, std::string_view sign, const Pattern& pattern) {
  const auto bound = numberAtStart(pattern.text());
  if (!bound) return false;
  const long double number = std::strtold(value.c_str(), nullptr);
  if (sign == ">=") return number >= *bound;
  return sign == "<=" ? number <= *bound : number == *bound;
}

bool propertyMatches(const Property& property, std::string_view sign, const Pattern& pattern) {
  switch (property.kind) {
    case Property::Kind::kNumber:
      return numberMatches(property.texts.front(), sign, pattern);
    case Property::Kind::kTruth:
      return (sign == "=" || sign == "~=") && !pattern.hasWildcard() &&
             isApproximately(property.texts.front(), pattern.text());
    default:
      return std::ranges::any_of(property.texts, [&](const std::string& text) {
        return textMatches(text, sign, pattern);
      });
  }
}

/// Reads a filter and tells whether it matches the properties in one go: nothing is kept.
class Twin {
 public:
  Twin(std::string_view text, bool ignoresCase) : text(text), ignoresCase(ignoresCase) {}

  /// Returns nothing if it is not a filter.
  std::optional<bool> run() {
    const auto result = filter();
    skipBlanks();
    return at == text.size() ? result : std::nullopt;
  }

 private:
  bool take(char byte) {
    if (at == text.size() || text[at] != byte) return false;
    ++at;
    return true;
  }

  void skipBlanks() {
    while (at < text.size() && isBlank(text[at])) ++at;
  }

  std::optional<bool> filter() {
    skipBlanks();
    if (!take('(')) return std::nullopt;
    skipBlanks();
    std::optional<bool> result;
    if (take('&')) {
      result = all(true);
    } else if (take('|')) {
      result = all(false);
    } else if (take('!')) {
      result = filter();
      skipBlanks();
      if (result) result = !*result;
    } else {
      result = condition();
    }
    return take(')') ? result : std::nullopt;
  }

  // Conditions of which all, or one, must be met.
  std::optional<bool> all(bool isAnd) {
    bool result = isAnd;
    do {
      const auto next = filter();
      if (!next) return std::nullopt;
      result = isAnd ? result && *next : result || *next;
      skipBlanks();
    } while (at < text.size() && text[at] == '(');
    return result;
  }

  std::optional<bool> condition() {
    std::string attribute;
    while (at < text.size() && std::string_view("=<>~()").find(text[at]) == std::string_view::npos)
      attribute += text[at++];
    while (!attribute.empty() && isBlank(attribute.back())) attribute.pop_back();
    if (attribute.empty()) return std::nullopt;
    const std::string_view sign = takeSign();
    const auto pattern = takePattern();
    if (sign.empty() || !pattern) return std::nullopt;
    return conditionHolds(attribute, sign, *pattern);
  }

  std::string_view takeSign() {
    for (const std::string_view sign : {"=", "~=", ">=", "<="}) {
      if (!text.substr(at).starts_with(sign)) continue;
      at += sign.size();
      return sign;
    }
    return {};
  }

  std::optional<Pattern> takePattern() {
    Pattern pattern;
    int depth = 0;
    while (at < text.size() && (text[at] != ')' || depth > 0)) {
      const char byte = text[at++];
      if (byte == '\\') {
        if (at == text.size()) return std::nullopt;
        pattern.units.push_back({text[at++], false});
        continue;
      }
      depth += byte == '(' ? 1 : 0;
      depth -= byte == ')' ? 1 : 0;
      pattern.units.push_back({byte, byte == '*'});
    }
    return pattern;
  }

  bool conditionHolds(const std::string& attribute, std::string_view sign,
                      const Pattern& pattern) const {
    for (const Property& property : properties()) {
      const bool isSame =
          ignoresCase ? lowered(property.name) == lowered(attribute) : property.name == attribute;
      if (!isSame) continue;
      const bool asksForPresence =
          sign == "=" && pattern.units.size() == 1 && pattern.hasWildcard();
      return asksForPresence || propertyMatches(property, sign, pattern);
    }
    return false;
  }

  std::string_view text;
  bool ignoresCase;
  std::size_t at = 0;
};

// The words that a number may be in place of digits.
bool hasNumberWord(const std::string& text) {
  const std::string lower = lowered(text);
  return lower.find("inf") != std::string::npos || lower.find("nan") != std::string::npos;
}

}  // namespace

void checkFilter(std::string_view input) {
  static const AnyMap map = makeProperties();
  const std::string text(input);
  const auto twin = Twin(text, true).run();
  std::optional<LDAPFilter> filter;
  try {
    filter.emplace(text);
  } catch (const std::invalid_argument&) {
    require(!twin, "what the twin reads is a filter");
    return;
  }
  require(twin.has_value(), "what the twin does not read is not a filter");
  const std::string shortest = filter->ToString();
  const LDAPFilter again(shortest);
  require(again.ToString() == shortest && again == *filter, "the text of a filter is stable");
  require(again.Match(map) == filter->Match(map) && again.MatchCase(map) == filter->MatchCase(map),
          "the text of a filter matches the same");
  if (hasNumberWord(text)) return;
  require(filter->Match(map) == *twin, "it matches what the twin matches");
  require(filter->MatchCase(map) == *Twin(text, false).run(), "also with regard to case");
}

}  // namespace quenlith::fuzz

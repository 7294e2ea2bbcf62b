#include "tessera/check/scan/StringLexer.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "fl/i18n/search.hpp"

namespace tessera::check::scan {
namespace {

constexpr StringSyntax kPython{.hasHashComments = true, .hasTripleQuotes = true};
constexpr StringSyntax kC{.hasRawStrings = true};
constexpr StringSyntax kJava{.hasTripleQuotes = true};
constexpr StringSyntax kGo{.hasBackticks = true};

constexpr auto kExtensions = std::to_array<std::pair<std::string_view, StringSyntax>>({
    {"py", kPython},
    {"pyi", kPython},
    {"c", kC},
    {"h", kC},
    {"cc", kC},
    {"hh", kC},
    {"cpp", kC},
    {"hpp", kC},
    {"cxx", kC},
    {"hxx", kC},
    {"java", kJava},
    {"go", kGo},
});

bool isWordUnit(char16_t unit) {
  const auto lower = static_cast<char16_t>(unit | 0x20U);
  return (unit >= u'0' && unit <= u'9') || (lower >= u'a' && lower <= u'z') || unit == u'_' ||
         unit >= 0x80;
}

}  // namespace

std::optional<StringSyntax> stringSyntaxOf(std::string_view path) {
  const std::size_t dot = path.rfind('.');
  if (dot == path.npos || path.find('/', dot) != path.npos) return std::nullopt;
  const std::string_view extension = path.substr(dot + 1);
  const auto found =
      std::ranges::find(kExtensions, extension, [](const auto& entry) { return entry.first; });
  if (found == kExtensions.end()) return std::nullopt;
  return found->second;
}

bool StringLexer::isInString(std::size_t position) {
  while (last.end <= position && at < text.size()) last = next();
  return last.isString && last.begin <= position && position < last.end;
}

/// Returns the next string, without its quotes, or comment.
StringLexer::Token StringLexer::next() {
  while (true) {
    at = fl::i18n::findAny<u'"', u'\'', u'#', u'/', u'`'>(text, at);
    if (at == text.size()) return {at, at, false};
    const std::size_t begin = at;
    switch (text[at]) {
      case u'"':
        return isRawPrefix(begin) ? readRawString(begin) : readString(begin);
      case u'\'':
        if (!isDigitSeparator(begin)) return readString(begin);
        break;
      case u'`':
        if (syntax.hasBackticks) return readString(begin);
        break;
      default: {
        const bool isHash = text[at] == u'#' && syntax.hasHashComments;
        const bool isSlash =
            !syntax.hasHashComments && (startsWith(at, u"//") || startsWith(at, u"/*"));
        if (isHash || isSlash) return readComment(begin);
      }
    }
    ++at;
  }
}

StringLexer::Token StringLexer::readComment(std::size_t begin) {
  const bool isBlock = startsWith(begin, u"/*");
  at = isBlock ? findEnd(u"*/", begin + 2, false) : findEnd(u"\n", begin, false);
  return {begin, at, false};
}

/// A string in single quotes that does not end on its line ends with the line.
StringLexer::Token StringLexer::readString(std::size_t begin) {
  const std::u16string_view quote = text.substr(begin, 1);
  const std::u16string_view triple = text.substr(begin, 3);
  const bool isBacktick = quote == u"`";
  if (syntax.hasTripleQuotes && triple.size() == 3 && triple == std::u16string(3, quote[0])) {
    at = findEnd(triple, begin + 3, true);
    return {begin + 3, at, true};
  }
  at = findEnd(quote, begin + 1, !isBacktick);
  if (isBacktick) return {begin + 1, at, true};
  const std::size_t lineEnd =
      begin + 1 + fl::i18n::findAny<u'\n'>(text.substr(begin + 1, at - begin - 1));
  const bool isContinued = lineEnd < at && text[lineEnd - 1] == u'\\';
  if (lineEnd < at && !isContinued) {
    at = lineEnd;
    return {begin, at, false};
  }
  return {begin + 1, at, true};
}

StringLexer::Token StringLexer::readRawString(std::size_t begin) {
  const std::size_t open = text.find(u'(', begin);
  if (open == text.npos || open - begin > 17) return readString(begin);
  std::u16string closer = u")";
  closer += text.substr(begin + 1, open - begin - 1);
  closer += u'"';
  at = findEnd(closer, open + 1, false);
  return {open + 1, at, true};
}

/// Returns the position after the next `closer`; the end of the text if there is none.
std::size_t StringLexer::findEnd(std::u16string_view closer, std::size_t from,
                                 bool hasEscapes) const {
  if (!hasEscapes) {
    const std::size_t found = text.find(closer, from);
    return found == text.npos ? text.size() : found + closer.size();
  }
  const bool isSingle = closer.size() == 1;
  for (std::size_t i = from; i < text.size(); ++i) {
    if (text[i] == u'\\') {
      ++i;
    } else if (startsWith(i, closer)) {
      return i + closer.size();
    } else if (isSingle && text[i] == u'\n') {
      return i + 1;
    }
  }
  return text.size();
}

/// A prefix is R, uR, UR, LR or u8R, and not the end of a longer name.
bool StringLexer::isRawPrefix(std::size_t quote) const {
  if (!syntax.hasRawStrings || quote == 0 || text[quote - 1] != u'R') return false;
  std::size_t begin = quote - 1;
  while (begin > 0 && isWordUnit(text[begin - 1])) --begin;
  const std::u16string_view prefix = text.substr(begin, quote - begin);
  return prefix == u"R" || prefix == u"uR" || prefix == u"UR" || prefix == u"LR" ||
         prefix == u"u8R";
}

/// In C, 1'000'000 is a number.
bool StringLexer::isDigitSeparator(std::size_t quote) const {
  if (!syntax.hasRawStrings || quote == 0 || quote + 1 == text.size()) return false;
  const char16_t before = text[quote - 1];
  const bool isHexDigit = (before >= u'0' && before <= u'9') ||
                          (before >= u'a' && before <= u'f') || (before >= u'A' && before <= u'F');
  return isHexDigit && isWordUnit(text[quote + 1]);
}

}  // namespace tessera::check::scan

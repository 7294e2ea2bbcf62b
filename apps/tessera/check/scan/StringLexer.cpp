#include "tessera/check/scan/StringLexer.hpp"

#include <algorithm>
#include <array>

#include "fl/i18n/search.hpp"

namespace tessera::check::scan {
namespace {

constexpr std::size_t kNone = std::u16string_view::npos;

// Strings in code in strings: in doubt, what is nested deeper is not a string.
constexpr std::size_t kMostNested = 8;

// C++ allows 16 units between the quote and the parenthesis of a raw string.
constexpr std::size_t kMostDelimiter = 16;

// '\u{10FFFF}'
constexpr std::size_t kMostEscape = 12;

bool isNameUnit(char16_t unit) {
  const auto lower = static_cast<char16_t>(unit | 0x20U);
  return (unit >= u'0' && unit <= u'9') || (lower >= u'a' && lower <= u'z') || unit == u'_' ||
         unit >= 0x80;
}

bool isHexadecimalDigit(char16_t unit) {
  const auto lower = static_cast<char16_t>(unit | 0x20U);
  return (unit >= u'0' && unit <= u'9') || (lower >= u'a' && lower <= u'f');
}

bool isHaskellSymbol(char16_t unit) {
  return std::u16string_view(u"!#$%&*+./<=>?@\\^|~:").find(unit) != kNone;
}

bool isOneOf(std::u16string_view name, std::initializer_list<std::u16string_view> names) {
  return std::ranges::find(names, name) != names.end();
}

}  // namespace

StringLexer::StringLexer(std::u16string_view text, const StringSyntax& syntax)
    : text(text), syntax(syntax) {
  const bool isUncertain = std::ranges::any_of(
      syntax.uncertain, [text](auto part) { return !part.empty() && text.find(part) != kNone; });
  if (isUncertain || !text.starts_with(syntax.requiredStart)) at = text.size();
}

std::optional<FoundString> StringLexer::stringAt(std::size_t position) {
  while (last.end <= position && at < text.size()) {
    last = next();
    at = last.end;
  }
  const bool isInside = last.isString && last.begin <= position && position < last.end;
  if (!isInside) return std::nullopt;
  return FoundString{last.begin, last.end, last.hasPlainQuotes && hasLongString};
}

/// Returns the next string, without its opener, or other text in which no string begins.
StringLexer::Token StringLexer::next() {
  while (true) {
    at = fl::i18n::findAny<u'"', u'\'', u'#', u'/', u'`', u'-', u'{', u'['>(text, at);
    if (at == text.size()) return {at, at, false};
    if (const auto comment = readComment(at)) return *comment;
    if (const auto opened = openString(at)) return readString(*opened);
    if (text[at] == u'\'' && syntax.hasCharacters) return readCharacter(at);
    if (text[at] == u'/' && syntax.hasPatterns) return readPattern(at);
    ++at;
  }
}

std::optional<StringLexer::Token> StringLexer::readComment(std::size_t begin) const {
  if (startsWith(begin, syntax.blockOpener)) return readBlockComment(begin);
  const bool isLine = std::ranges::any_of(
      syntax.lineComments, [&](std::u16string_view leader) { return startsWith(begin, leader); });
  if (!isLine) return std::nullopt;
  if (syntax.delimited == DelimitedString::kBrackets) {
    if (const auto opened = openDelimited(begin + 2)) {
      return Token{begin, findDelimiter(*opened), false};
    }
  }
  if (syntax.isHaskell) {
    const std::size_t end = begin + run(begin, u'-');
    const bool isOperator = (end < text.size() && isHaskellSymbol(text[end])) ||
                            (begin > 0 && isHaskellSymbol(text[begin - 1]));
    if (isOperator) return Token{begin, end, false};
  }
  return Token{begin, lineEndAfter(begin), false};
}

StringLexer::Token StringLexer::readBlockComment(std::size_t begin) const {
  std::size_t depth = 1;
  std::size_t i = begin + syntax.blockOpener.size();
  while (i < text.size() && depth > 0) {
    if (startsWith(i, syntax.blockCloser)) {
      --depth;
      i += syntax.blockCloser.size();
    } else if (syntax.blockCommentsNest && startsWith(i, syntax.blockOpener)) {
      ++depth;
      i += syntax.blockOpener.size();
    } else {
      ++i;
    }
  }
  return {begin, i, false};
}

StringLexer::Token StringLexer::readString(const Opened& opened) {
  const std::size_t end = endOf(opened, 0);
  const StringForm* const form = opened.form;
  const bool spansLines = form == nullptr || form->spansLines;
  const bool hasPlainQuotes =
      spansLines && form != nullptr && form->opener == form->closer && form->opener.size() == 1;
  if (end != kNone) {
    const std::u16string_view string = text.substr(opened.begin, end - opened.begin);
    hasLongString = hasLongString || (hasPlainQuotes && string.find(u'\n') != kNone);
    return {opened.begin, end, true, hasPlainQuotes};
  }
  return {opened.begin, spansLines ? text.size() : lineEndAfter(opened.begin), false};
}

/// A character, or the quote alone if none begins there.
StringLexer::Token StringLexer::readCharacter(std::size_t begin) const {
  const Token quote{begin, begin + 1, false};
  const bool isInName =
      syntax.isHaskell && begin > 0 && (isNameUnit(text[begin - 1]) || text[begin - 1] == u'\'');
  if (isInName || begin + 2 >= text.size()) return quote;
  const char16_t first = text[begin + 1];
  if (first == u'\\') {
    const std::size_t length = text.substr(begin + 3, kMostEscape).find(u'\'');
    return length == kNone ? quote : Token{begin, begin + 3 + length + 1, false};
  }
  if (first == u'\'' || first == u'\n') return quote;
  const std::size_t end = begin + ((first & 0xFC00) == 0xD800 ? 3 : 2);
  return end < text.size() && text[end] == u'\'' ? Token{begin, end + 1, false} : quote;
}

/// A pattern cannot be told from a division, so no string is certain on the rest of the line.
StringLexer::Token StringLexer::readPattern(std::size_t begin) {
  if (quoteOrLineEnd < begin) quoteOrLineEnd = fl::i18n::findAny<u'"', u'\n'>(text, begin);
  const bool hasQuote = quoteOrLineEnd < text.size() && text[quoteOrLineEnd] == u'"';
  if (!hasQuote) return {begin, begin + 1, false};
  const std::size_t end = lineEndAfter(begin);
  const std::u16string_view rest = text.substr(begin, end - begin);
  const bool mayOpen = rest.find(u"\"\"\"") != kNone || rest.find(syntax.blockOpener) != kNone;
  return {begin, mayOpen ? text.size() : end, false};
}

std::optional<StringLexer::Opened> StringLexer::openString(std::size_t begin) const {
  if (std::u16string_view(u"\"'`[").find(text[begin]) == kNone) return std::nullopt;
  if (auto opened = openDelimited(begin)) return opened;
  if (syntax.hasDigitSeparators && isDigitSeparator(begin)) return std::nullopt;
  for (const StringForm& form : syntax.strings) {
    if (matches(form, begin)) return Opened{begin + form.opener.size(), &form, {}};
  }
  return std::nullopt;
}

bool StringLexer::matches(const StringForm& form, std::size_t begin) const {
  if (!startsWith(begin, form.opener) || !hasPrefix(begin, form.prefix)) return false;
  return !form.needsName || (begin > 0 && isNameUnit(text[begin - 1]));
}

bool StringLexer::hasPrefix(std::size_t begin, std::u16string_view prefix) const {
  if (prefix.empty()) return true;
  const std::u16string_view before = text.substr(0, begin);
  if (!before.ends_with(prefix)) return false;
  return !isNameUnit(prefix.front()) || nameBefore(begin) == prefix;
}

/// Returns the name that ends at `end`; only its last units if it is longer than any prefix.
std::u16string_view StringLexer::nameBefore(std::size_t end) const {
  constexpr std::size_t kMost = 4;
  std::size_t begin = end;
  while (begin > 0 && end - begin < kMost && isNameUnit(text[begin - 1])) --begin;
  return text.substr(begin, end - begin);
}

std::optional<StringLexer::Opened> StringLexer::openDelimited(std::size_t begin) const {
  if (begin >= text.size()) return std::nullopt;
  switch (syntax.delimited) {
    case DelimitedString::kParenthesis:
      return openParenthesis(begin);
    case DelimitedString::kHashesAfterR:
    case DelimitedString::kHashes:
      return openHashes(begin);
    case DelimitedString::kQuotes: {
      const std::size_t quotes = run(begin, u'"');
      const bool isVerbatim = hasPrefix(begin, u"@") || hasPrefix(begin, u"@$");
      if (quotes < 3 || isVerbatim) return std::nullopt;
      return Opened{begin + quotes, nullptr, std::u16string(quotes, u'"')};
    }
    case DelimitedString::kBrackets: {
      if (text[begin] != u'[') return std::nullopt;
      const std::size_t level = run(begin + 1, u'=');
      if (!startsWith(begin + 1 + level, u"[")) return std::nullopt;
      return Opened{begin + level + 2, nullptr, u"]" + std::u16string(level, u'=') + u"]"};
    }
    default:
      return std::nullopt;
  }
}

std::optional<StringLexer::Opened> StringLexer::openParenthesis(std::size_t begin) const {
  if (text[begin] != u'"' || !isOneOf(nameBefore(begin), {u"R", u"uR", u"UR", u"LR", u"u8R"})) {
    return std::nullopt;
  }
  const std::size_t length = text.substr(begin + 1, kMostDelimiter + 1).find(u'(');
  if (length == kNone) return std::nullopt;
  std::u16string closer = u")";
  closer.append(text.substr(begin + 1, length)).append(u"\"");
  return Opened{begin + length + 2, nullptr, std::move(closer)};
}

std::optional<StringLexer::Opened> StringLexer::openHashes(std::size_t begin) const {
  if (text[begin] != u'"') return std::nullopt;
  std::size_t hashes = 0;
  while (hashes < begin && text[begin - hashes - 1] == u'#') ++hashes;
  const std::u16string suffix(hashes, u'#');
  if (syntax.delimited == DelimitedString::kHashesAfterR) {
    const bool isRaw = isOneOf(nameBefore(begin - hashes), {u"r", u"br", u"cr"});
    if (!isRaw) return std::nullopt;
    return Opened{begin + 1, nullptr, u"\"" + suffix};
  }
  if (hashes == 0) return std::nullopt;
  const std::u16string quotes(startsWith(begin, u"\"\"\"") ? 3 : 1, u'"');
  return Opened{begin + quotes.size(), nullptr, quotes + suffix};
}

/// In C, 1'000'000 is a number.
bool StringLexer::isDigitSeparator(std::size_t quote) const {
  return text[quote] == u'\'' && quote > 0 && quote + 1 < text.size() &&
         isHexadecimalDigit(text[quote - 1]) && isNameUnit(text[quote + 1]);
}

/// Returns the position after the closer; `kNone` if there is none, or what is in the string is
/// not certain.
std::size_t StringLexer::endOf(const Opened& opened, std::size_t depth) const {
  return opened.form == nullptr ? findDelimiter(opened)
                                : findCloser(*opened.form, opened.begin, depth);
}

std::size_t StringLexer::findDelimiter(const Opened& opened) const {
  const std::size_t found = text.find(opened.delimiter, opened.begin);
  return found == kNone ? kNone : found + opened.delimiter.size();
}

std::size_t StringLexer::findCloser(const StringForm& form, std::size_t from,
                                    std::size_t depth) const {
  std::size_t i = from;
  while (i < text.size()) {
    if (startsWith(i, form.closer)) {
      const std::size_t after = i + form.closer.size();
      const bool isDoubled = form.escape == Escape::kDoubled && startsWith(after, form.closer);
      if (!isDoubled) return form.mayEndInQuotes ? after + run(after, form.closer[0]) : after;
      i = after + form.closer.size();
    } else if (startsWith(i, form.interpolation)) {
      i = skipCode(form, i, depth);
      if (i == kNone) return kNone;
    } else if (form.escape == Escape::kBackslash && text[i] == u'\\') {
      i = skipEscape(i);
    } else if (text[i] == u'\n' && !form.spansLines) {
      return kNone;
    } else {
      ++i;
    }
  }
  return kNone;
}

std::size_t StringLexer::skipEscape(std::size_t backslash) const {
  const std::size_t next = backslash + 1;
  const bool isGap = syntax.isHaskell && next < text.size() &&
                     std::u16string_view(u" \t\n").find(text[next]) != kNone;
  if (!isGap) return next + 1;
  return std::min(text.find(u'\\', next), text.size() - 1) + 1;
}

/// Returns the position after the code that begins at `begin` in a string.
std::size_t StringLexer::skipCode(const StringForm& form, std::size_t begin,
                                  std::size_t depth) const {
  const char16_t open = form.interpolation.find(u'(') == kNone ? u'{' : u'(';
  const char16_t close = open == u'{' ? u'}' : u')';
  std::size_t i = begin + form.interpolation.size();
  // C# writes a brace of the text twice.
  if (form.interpolation == u"{" && startsWith(i, u"{")) return i + 1;
  std::size_t level = 1;
  while (i < text.size() && level > 0) {
    if (text[i] == u'\n' && !form.spansLines) return kNone;
    if (const auto opened = openString(i)) {
      i = depth < kMostNested ? endOf(*opened, depth + 1) : kNone;
      if (i == kNone) return kNone;
      continue;
    }
    if (text[i] == u'\'' && syntax.hasCharacters) {
      i = readCharacter(i).end;
      continue;
    }
    level += text[i] == open ? 1U : 0U;
    level -= text[i] == close ? 1U : 0U;
    ++i;
  }
  return level == 0 ? i : kNone;
}

std::size_t StringLexer::lineEndAfter(std::size_t position) const {
  return std::min(text.find(u'\n', position), text.size());
}

std::size_t StringLexer::run(std::size_t begin, char16_t unit) const {
  const std::size_t end = text.find_first_not_of(unit, std::min(begin, text.size()));
  return std::min(end, text.size()) - std::min(begin, text.size());
}

}  // namespace tessera::check::scan

#include "foundation/json/flatObject.hpp"

#include "fl/i18n/search.hpp"

namespace foundation::json {

namespace {

/// Scans a text from left to right. An operation that does not find what it expects returns false.
class FlatObjectScanner {
 public:
  FlatObjectScanner(std::u16string_view text, std::size_t from) noexcept
      : text(text), at(text.data() + from), end(text.data() + text.size()) {}

  std::size_t position() const noexcept { return static_cast<std::size_t>(at - text.data()); }

  bool skipObject() noexcept {
    ++at;
    skipBlanks();
    if (skipIf(u'}')) return true;
    while (skipString() && skipSeparator(u':') && skipValue()) {
      skipBlanks();
      if (skipIf(u'}')) return true;
      if (!skipSeparator(u',')) return false;
    }
    return false;
  }

 private:
  bool skipIf(char16_t unit) noexcept {
    const bool found = at != end && *at == unit;
    at += found ? 1 : 0;
    return found;
  }

  void skipBlanks() noexcept {
    while (at != end && (*at == u' ' || *at == u'\t')) ++at;
  }

  /// Skips `unit` and the blanks around it.
  bool skipSeparator(char16_t unit) noexcept {
    skipBlanks();
    const bool found = skipIf(unit);
    skipBlanks();
    return found;
  }

  bool skipString() noexcept {
    if (!skipIf(u'"')) return false;
    at = text.data() +
         fl::i18n::findAny<fl::i18n::UnitRange(0, 0x1F), u'"', u'\\'>(text, position());
    return skipIf(u'"');
  }

  bool skipValue() noexcept {
    if (at == end) return false;
    switch (*at) {
      case u'"':
        return skipString();
      case u't':
        return skipWord(u"true");
      case u'f':
        return skipWord(u"false");
      case u'n':
        return skipWord(u"null");
      default:
        return skipNumber();
    }
  }

  bool skipWord(std::u16string_view word) noexcept {
    const bool found =
        std::u16string_view(at, static_cast<std::size_t>(end - at)).starts_with(word);
    at += found ? word.size() : 0;
    return found;
  }

  bool skipNumber() noexcept {
    skipIf(u'-');
    if (!skipIf(u'0') && !skipDigits()) return false;
    return !skipIf(u'.') || skipDigits();
  }

  /// Fails for more than 20 digits: with so few the number cannot exceed the largest double.
  bool skipDigits() noexcept {
    constexpr std::ptrdiff_t kMaxDigits = 20;
    const char16_t* const first = at;
    while (at != end && *at >= u'0' && *at <= u'9') ++at;
    return at != first && at - first <= kMaxDigits;
  }

  std::u16string_view text;
  const char16_t* at;
  const char16_t* end;
};

}  // namespace

std::size_t flatObjectEnd(std::u16string_view text, std::size_t from) noexcept {
  FlatObjectScanner scanner(text, from);
  return scanner.skipObject() ? scanner.position() : from;
}

}  // namespace foundation::json

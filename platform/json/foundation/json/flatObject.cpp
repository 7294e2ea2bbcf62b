#include "foundation/json/flatObject.hpp"

#include "fl/i18n/search.hpp"

namespace foundation::json {

namespace {

/// Goes over one text from left to right. An operation that does not find what it looks for
/// returns false.
class FlatObject {
 public:
  FlatObject(std::u16string_view source, std::size_t from) noexcept
      : text(source), at(source.data() + from), end(source.data() + source.size()) {}

  const char16_t* place() const noexcept { return at; }

  bool skip() noexcept {
    ++at;
    skipBlanks();
    if (skipIf(u'}')) return true;
    while (skipString() && skipAround(u':') && skipValue()) {
      skipBlanks();
      if (skipIf(u'}')) return true;
      if (!skipAround(u',')) return false;
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

  /// A unit with blanks around it.
  bool skipAround(char16_t unit) noexcept {
    skipBlanks();
    const bool found = skipIf(unit);
    skipBlanks();
    return found;
  }

  bool skipString() noexcept {
    if (!skipIf(u'"')) return false;
    at = text.data() + fl::i18n::findAny<fl::i18n::UnitRange(0, 0x1F), u'"', u'\\'>(
                           text, static_cast<std::size_t>(at - text.data()));
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

  /// So few that the number is far from the largest double.
  bool skipDigits() noexcept {
    constexpr std::ptrdiff_t kMost = 20;
    const char16_t* const first = at;
    while (at != end && *at >= u'0' && *at <= u'9') ++at;
    return at != first && at - first <= kMost;
  }

  std::u16string_view text;
  const char16_t* at;
  const char16_t* end;
};

}  // namespace

std::size_t flatObjectEnd(std::u16string_view text, std::size_t from) noexcept {
  FlatObject object(text, from);
  return object.skip() ? static_cast<std::size_t>(object.place() - text.data()) : from;
}

}  // namespace foundation::json

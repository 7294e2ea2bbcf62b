#include "tessera/reports/embeddable.hpp"

#include <cstddef>

#include "fl/i18n/ustring.hpp"
#include "fl/i18n/utf16.hpp"
#include "tessera/characters/Character.hpp"
#include "tessera/characters/visibility.hpp"
#include "tessera/diagnostics/terminalText.hpp"

namespace tessera::reports {
namespace {

bool isLetter(char16_t unit) noexcept {
  return (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z';
}

/// Returns whether `text` could begin a tag, a comment or a declaration of HTML. A marker does not:
/// "@" follows its "<".
bool beginsMarkup(std::u16string_view text) noexcept {
  if (text.size() < 2 || text[0] != u'<') return false;
  return isLetter(text[1]) || text[1] == u'/' || text[1] == u'!' || text[1] == u'?';
}

}  // namespace

std::string embeddable(std::string_view json) {
  const std::u16string text = fl::i18n::utf8_to_ustring(json);
  std::u16string_view rest = text;
  std::string result;
  result.reserve(json.size());
  std::size_t kept = 0;
  while (kept < rest.size()) {
    const auto character = characters::firstOf(rest.substr(kept));
    if (!beginsMarkup(rest.substr(kept)) && !characters::isInvisible(character.code)) {
      kept += character.units;
      continue;
    }
    fl::i18n::appendUtf8(result, rest.substr(0, kept));
    diagnostics::appendEscape(result, character.code);
    rest.remove_prefix(kept + character.units);
    kept = 0;
  }
  fl::i18n::appendUtf8(result, rest);
  return result;
}

}  // namespace tessera::reports

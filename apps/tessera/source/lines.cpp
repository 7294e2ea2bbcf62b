#include "tessera/source/lines.hpp"

#include "fl/i18n/search.hpp"

namespace tessera::source {

using fl::i18n::findAny;

std::uint64_t countCharacters(std::u16string_view text) noexcept {
  std::uint64_t count = 0;
  for (std::size_t i = 0; i < text.size(); ++i, ++count) {
    const bool leads = (text[i] & 0xFC00) == 0xD800;
    if (leads && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00) ++i;
  }
  return count;
}

diagnostics::Place endOf(std::u16string_view text) noexcept {
  diagnostics::Place place;
  for (std::size_t end = findAny<u'\n'>(text); end < text.size(); end = findAny<u'\n'>(text)) {
    text.remove_prefix(end + 1);
    ++place.line;
  }
  place.column = countCharacters(text) + 1;
  return place;
}

std::optional<std::u16string_view> LineCursor::next() noexcept {
  if (!more) return std::nullopt;
  const std::size_t end = findAny<u'\n'>(rest);
  const std::u16string_view line = rest.substr(0, end);
  more = end < rest.size();
  rest.remove_prefix(more ? end + 1 : end);
  return line;
}

}  // namespace tessera::source

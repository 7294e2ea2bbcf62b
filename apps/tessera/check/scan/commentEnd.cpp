#include "tessera/check/scan/commentEnd.hpp"

#include <algorithm>

namespace tessera::check::scan {

std::u16string_view commentEndAt(std::u16string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of(u" \t"), text.size());
  text.remove_prefix(begin);
  if (text.empty() || (text.front() != u'*' && text.front() != u'-')) return {};
  const std::size_t length = text.find_first_not_of(text.front());
  if (length == text.npos) return {};
  const char16_t last = text[length];
  const bool isEnd = text.front() == u'*'
                         ? last == u'/' || last == u')'
                         : (last == u'>' && length > 1) || (last == u'}' && length == 1);
  return isEnd ? text.substr(0, length + 1) : std::u16string_view();
}

std::u16string_view openerOf(std::u16string_view commentEnd) {
  switch (commentEnd.back()) {
    case u'/':
      return u"/*";
    case u')':
      return u"(*";
    case u'>':
      return u"<!--";
    default:
      return u"{-";
  }
}

}  // namespace tessera::check::scan

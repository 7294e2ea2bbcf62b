#include "tessera/source/readAppendix.hpp"

#include <string>
#include <utility>

#include "quenlith/syntax/markers.hpp"
#include "tessera/hashing/KeyedMap.hpp"

namespace tessera::source {

std::vector<quenlith::syntax::Marker> readAppendix(const SourceText& source) {
  std::vector<quenlith::syntax::Marker> entries;
  hashing::KeyedSet<std::pair<std::u16string, std::u16string>> keys;
  LineCursor cursor(source.appendix.text, source.appendix.any);
  while (const auto line = cursor.next()) {
    const auto markers =
        quenlith::syntax::get_markers_from_snippet(fl::i18n::ustring(*line), false);
    if (markers.empty()) continue;
    const auto& marker = markers.front().marker;
    if (keys.insert({marker.getElement(), marker.getId()}).second) entries.push_back(marker);
  }
  return entries;
}

}  // namespace tessera::source

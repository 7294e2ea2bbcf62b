#include "tessera/source/readAppendix.hpp"

#include <set>
#include <utility>

#include "quenlith/syntax/markers.hpp"

namespace tessera::source {

std::vector<quenlith::syntax::Marker> readAppendix(const SourceText& source) {
  std::vector<quenlith::syntax::Marker> entries;
  std::set<std::pair<fl::i18n::ustring, fl::i18n::ustring>> keys;
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

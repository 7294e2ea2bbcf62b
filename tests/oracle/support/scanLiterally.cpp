#include "oracle/support/scanLiterally.hpp"

#include <algorithm>
#include <utility>

namespace quenlith::oracle {

std::vector<TwinMarker> scanLiterally(std::u16string_view text) {
  std::vector<TwinMarker> markers;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find(u'\n', begin), text.size());
    const std::u16string_view line = text.substr(begin, end - begin);
    // The twin takes long: it tries every position.
    if (line.find(u"<@") != line.npos) {
      for (TwinMarker& found : twinMarkers(line, false)) {
        found.position += begin;
        markers.push_back(std::move(found));
      }
    }
    begin = end + 1;
  }
  return markers;
}

}  // namespace quenlith::oracle

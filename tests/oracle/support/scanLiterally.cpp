#include "oracle/support/scanLiterally.hpp"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "oracle/markers/MarkerTwin.hpp"

namespace quenlith::oracle {

using build::markup::core::MarkerInfo;
using syntax::Marker;

namespace {

void scanLine(std::u16string_view line, std::size_t begin, std::vector<MarkerInfo>& infos) {
  for (const TwinMarker& found : twinMarkers(line, false)) {
    const Marker marker(std::u16string(line.substr(found.position, found.length)));
    if (marker.getElement() != found.element || marker.getType() != found.type ||
        marker.getId() != found.id || marker.getData() != found.data) {
      throw std::logic_error("a marker has other parts than those that the twin reads");
    }
    infos.push_back({marker, begin + found.position, found.length, found.range});
  }
}

}  // namespace

std::vector<MarkerInfo> scanLiterally(std::u16string_view text) {
  std::vector<MarkerInfo> infos;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find(u'\n', begin), text.size());
    const std::u16string_view line = text.substr(begin, end - begin);
    // The twin takes long: it tries every position.
    if (line.find(u"<@") != line.npos) scanLine(line, begin, infos);
    begin = end + 1;
  }
  return infos;
}

bool haveEqualParts(const Marker& left, const Marker& right) {
  return left.getElement() == right.getElement() && left.getType() == right.getType() &&
         left.getId() == right.getId() && left.getData() == right.getData();
}

}  // namespace quenlith::oracle

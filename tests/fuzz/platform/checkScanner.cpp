#include <cstddef>
#include <string_view>
#include <vector>

#include "fl/i18n/ustring.hpp"
#include "fuzz/require.hpp"
#include "fuzz/targets.hpp"
#include "fuzz/textOf.hpp"
#include "oracle/markers/MarkerTwin.hpp"
#include "quenlith/syntax/markers.hpp"

namespace quenlith::fuzz {

using fl::i18n::ustring;

namespace {

void checkAlike(const build::markup::core::MarkerInfo& real, const oracle::TwinMarker& twin) {
  require(real.position == twin.position && real.length == twin.length && real.range == twin.range,
          "each in its place");
  const syntax::Marker& marker = real.marker;
  require(marker.getElement() == twin.element && marker.getType() == twin.type &&
              marker.getId() == twin.id && marker.getData() == twin.data,
          "each with its parts");
}

}  // namespace

void checkScanner(std::string_view input) {
  const ustring text = textOf(input);
  // The twin takes most of the time, so it reads each text in one of the two ways.
  const bool anyElement = input.size() % 2 == 1;
  const auto real = syntax::get_markers_from_snippet(text, anyElement);
  const std::vector<oracle::TwinMarker> twin = oracle::twinMarkers(text, anyElement);
  require(real.size() == twin.size(), "as many markers as the grammar gives");
  for (std::size_t index = 0; index < real.size(); ++index) checkAlike(real[index], twin[index]);
}

}  // namespace quenlith::fuzz

#include "quenlith/build/markup/code/MarkerKind.hpp"

#include <string_view>

namespace quenlith::build::markup::code {

using syntax::Marker;

bool isControl(const Marker& marker) noexcept {
  return marker.elementView() == u"control";
}

bool isOutput(const Marker& marker) noexcept {
  return marker.elementView() == u"output";
}

bool isTask(const Marker& marker) noexcept {
  return marker.elementView() == u"task";
}

bool isTextAnchor(const Marker& marker) noexcept {
  return marker.elementView() == u"text" && marker.typeView() == u"anchor";
}

namespace {

/// The canonical texts of markers made from the bare element names.
struct KindTexts {
  fl::i18n::ustring control = Marker(u"control").toString();
  fl::i18n::ustring output = Marker(u"output").toString();
  fl::i18n::ustring task = Marker(u"task").toString();
  fl::i18n::ustring text = Marker(u"text").toString();
};

}  // namespace

void recordMarkerKind(const Marker& marker, ParseResult& result) {
  // Made once: making one for every marker costs more than the rest of the record.
  static const KindTexts texts;
  if (isControl(marker)) result.markerTypes.insert(texts.control);
  if (isOutput(marker)) result.markerTypes.insert(texts.output);
  if (isTask(marker)) result.markerTypes.insert(texts.task);
  if (isTextAnchor(marker)) result.markerTypes.insert(texts.text);
}

}  // namespace quenlith::build::markup::code

#include "ControlDataParser.hpp"

#include <boost/uuid/uuid.hpp>

#include "quenlith/bundle/component.hpp"

namespace examples {

using contributors::kdzero::LineData;

bool ControlDataParser::isApplicable(const quenlith::syntax::Marker& marker) {
  return marker.elementView() == u"control";
}

std::pair<fl::i18n::ustring, LineData> ControlDataParser::parse(
    const kd::zero::Model& model, const quenlith::syntax::Marker& marker) {
  LineData data = LineData::Builder(model).createLineData(boost::uuids::uuid{});
  data->setData(marker.getData());
  return {u"control", data};
}

}  // namespace examples

QUENLITH_COMPONENT(examples_ControlDataParser, examples::ControlDataParser,
                   Provides<quenlith::build::markup::contributordata::LineContributorDataParser>)

#include "OutputDataParser.hpp"

#include <boost/uuid/uuid.hpp>

#include "quenlith/bundle/component.hpp"

namespace examples {

using contributors::kdzero::LineData;

bool OutputDataParser::isApplicable(const quenlith::syntax::Marker& marker) {
  return marker.elementView() == u"output";
}

std::pair<fl::i18n::ustring, LineData> OutputDataParser::parse(
    const kd::zero::Model& model, const quenlith::syntax::Marker& marker) {
  LineData data = LineData::Builder(model).createLineData(boost::uuids::uuid{});
  data->setData(marker.getData());
  return {u"output", data};
}

}  // namespace examples

QUENLITH_COMPONENT(examples_OutputDataParser, examples::OutputDataParser,
                   Provides<quenlith::build::markup::contributordata::LineContributorDataParser>)

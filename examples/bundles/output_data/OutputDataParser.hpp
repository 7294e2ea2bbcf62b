#pragma once

#include "quenlith/build/markup/contributordata/LineContributorDataParser.hpp"

namespace examples {

/// Adds the data of output markers to their line, as the feature "output".
class OutputDataParser
    : public quenlith::build::markup::contributordata::LineContributorDataParser {
 public:
  bool isApplicable(const quenlith::syntax::Marker& marker) override;
  std::pair<fl::i18n::ustring, contributors::kdzero::LineData> parse(
      const kd::zero::Model& model, const quenlith::syntax::Marker& marker) override;
};

}  // namespace examples

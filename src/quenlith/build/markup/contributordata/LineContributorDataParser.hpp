#pragma once

#include <utility>

#include "contributors/kdzero/LineData.hpp"
#include "cppmicroservices/ServiceInterface.h"
#include "fl/i18n/ustring.hpp"
#include "kd/zero/Model.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace quenlith::build::markup::contributordata {

/// Service interface: provides the data that a marker contributes to its line.
class LineContributorDataParser {
 public:
  virtual ~LineContributorDataParser() = default;

  /// Returns whether this parser has data for `marker`.
  virtual bool isApplicable(const quenlith::syntax::Marker& marker) = 0;

  /// Returns the contributing feature and its data, a new element of `model`. The data may be
  /// the empty handle: the line then gets the feature without data.
  virtual std::pair<fl::i18n::ustring, contributors::kdzero::LineData> parse(
      const kd::zero::Model& model, const quenlith::syntax::Marker& marker) = 0;
};

}  // namespace quenlith::build::markup::contributordata

CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(
    quenlith::build::markup::contributordata::LineContributorDataParser,
    "quenlith::build::markup::contributordata::LineContributorDataParser")

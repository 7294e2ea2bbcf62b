#pragma once

#include "quenlith/build/markup/contributordata/LineContributorDataParser.hpp"

namespace tessera::tests {

/// Does what the id of an anchor says, if it is a fault: "abort", "exit", "hang", "kill" or "segv".
/// The environment variable TESSERA_TEST_FAULT does the same when the library is loaded.
class FaultyContributor
    : public quenlith::build::markup::contributordata::LineContributorDataParser {
 public:
  bool isApplicable(const quenlith::syntax::Marker& marker) override;
  std::pair<fl::i18n::ustring, contributors::kdzero::LineData> parse(
      const kd::zero::Model& model, const quenlith::syntax::Marker& marker) override;
};

}  // namespace tessera::tests

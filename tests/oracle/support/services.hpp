#pragma once

#include <memory>
#include <vector>

#include "oracle/support/World.hpp"
#include "quenlith/build/markup/services/ParserServicesProvider.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace quenlith::oracle {

using build::markup::code::CodeElementParser;
using build::markup::contributordata::LineContributorDataParser;

/// Returns the parts of `marker`.
PlainMarker plainMarker(const syntax::Marker& marker);

/// Provides services that forward every call to a world. Its construction is not traced.
class WorldProvider final : public build::markup::services::ParserServicesProvider {
 public:
  /// Borrows `serviceWorld`.
  explicit WorldProvider(World& serviceWorld);

  std::vector<std::shared_ptr<LineContributorDataParser>> getLineContributorDataParsers() override;
  std::vector<std::shared_ptr<CodeElementParser>> getCodeElementParsers() override;

  /// Returns whether this provider is the only owner of its services.
  bool isSoleOwner() const;

 private:
  class Pieces;
  class Contributions;

  std::shared_ptr<CodeElementParser> makeDefaultParser() const;

  World& world;
  std::shared_ptr<document::kdzero::Node> lastNode;
  std::vector<std::shared_ptr<CodeElementParser>> codeElementParsers;
  std::vector<std::shared_ptr<LineContributorDataParser>> contributorParsers;
};

}  // namespace quenlith::oracle

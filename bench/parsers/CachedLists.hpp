#pragma once

#include <memory>
#include <vector>

#include "quenlith/build/markup/services/ParserServicesProvider.hpp"

namespace bench::parsers {

/// A provider with fixed lists: a call costs only the copy of a list.
class CachedLists : public quenlith::build::markup::services::ParserServicesProvider {
 public:
  using ContributorDataParsers = std::vector<
      std::shared_ptr<quenlith::build::markup::contributordata::LineContributorDataParser>>;
  using CodeElementParsers =
      std::vector<std::shared_ptr<quenlith::build::markup::code::CodeElementParser>>;

  CachedLists();

  ContributorDataParsers getLineContributorDataParsers() override { return contributors; }
  CodeElementParsers getCodeElementParsers() override { return elementParsers; }

 private:
  ContributorDataParsers contributors;
  CodeElementParsers elementParsers;
};

}  // namespace bench::parsers

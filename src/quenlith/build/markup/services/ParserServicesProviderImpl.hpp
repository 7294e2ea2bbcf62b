#pragma once

#include <memory>
#include <vector>

#include "quenlith/build/markup/services/ParserServicesProvider.hpp"

namespace quenlith::build::markup::services {

/// Finds the parsers in the service registry of the running framework and caches them.
///
/// A list is cached once it has an entry, for the life of the provider. While no contributor data
/// parser is registered, each call looks one up again. No running framework is not an error: no
/// parser is found then. A lookup that throws leaves the caches unchanged. Not thread-safe.
class ParserServicesProviderImpl : public ParserServicesProvider {
 public:
  ParserServicesProviderImpl();
  ~ParserServicesProviderImpl() override;

  /// Throws std::runtime_error "The bundle context is no longer valid" when the framework has
  /// stopped or stops during the lookup.
  std::vector<std::shared_ptr<contributordata::LineContributorDataParser>>
  getLineContributorDataParsers() override;

  /// Throws std::runtime_error "The bundle context is no longer valid" when the framework has
  /// stopped or stops during the lookup.
  std::vector<std::shared_ptr<code::CodeElementParser>> getCodeElementParsers() override;

 private:
  std::vector<std::shared_ptr<contributordata::LineContributorDataParser>>
      lineContributorDataParsers;
  std::vector<std::shared_ptr<code::CodeElementParser>> codeElementParsers;
};

}  // namespace quenlith::build::markup::services

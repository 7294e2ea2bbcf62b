#pragma once

#include <memory>
#include <vector>

#include "quenlith/build/markup/services/ParserServicesProvider.hpp"

namespace quenlith::build::markup::services {

/// Finds the parsers in the registry of the running framework and keeps what it found.
///
/// A list that was found is kept for the life of the provider; while no contributor data parser
/// is registered, each call looks again. Without a running framework nothing is found, which is
/// no error. A lookup that throws leaves the lists as they were. Not thread-safe.
class ParserServicesProviderImpl : public ParserServicesProvider {
 public:
  ParserServicesProviderImpl();
  ~ParserServicesProviderImpl() override;

  /// Throws std::runtime_error "The bundle context is no longer valid" when the framework stops
  /// meanwhile.
  std::vector<std::shared_ptr<contributordata::LineContributorDataParser>>
  getLineContributorDataParsers() override;

  /// Throws std::runtime_error "The bundle context is no longer valid" when the framework stops
  /// meanwhile.
  std::vector<std::shared_ptr<code::CodeElementParser>> getCodeElementParsers() override;

 private:
  std::vector<std::shared_ptr<contributordata::LineContributorDataParser>>
      lineContributorDataParsers;
  std::vector<std::shared_ptr<code::CodeElementParser>> codeElementParsers;
};

}  // namespace quenlith::build::markup::services

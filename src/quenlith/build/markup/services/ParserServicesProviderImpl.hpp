#pragma once

#include <memory>
#include <vector>

#include "quenlith/build/markup/services/AbsenceWatch.hpp"
#include "quenlith/build/markup/services/ParserServicesProvider.hpp"

namespace quenlith::build::markup::services {

/// Finds the parsers in the registry of the running framework and keeps what it found.
///
/// A list that was found is kept for the life of the provider; while no contributor data parser
/// is registered, each call looks again, unless the framework, which tells of every change, told
/// of none. Without a running framework nothing is found, which is
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
  void lookForContributors();

  std::vector<std::shared_ptr<contributordata::LineContributorDataParser>>
      lineContributorDataParsers;
  std::vector<std::shared_ptr<code::CodeElementParser>> codeElementParsers;
  /// Of the contributor data parsers while there is none.
  AbsenceWatch noContributors;
};

}  // namespace quenlith::build::markup::services

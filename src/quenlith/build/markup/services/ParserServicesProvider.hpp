#pragma once

#include <memory>
#include <vector>

#include "cppmicroservices/ServiceInterface.h"
#include "quenlith/build/markup/code/CodeElementParser.hpp"
#include "quenlith/build/markup/contributordata/LineContributorDataParser.hpp"

namespace quenlith::build::markup::services {

/// Service interface: provides the parsers for a line.
///
/// Not thread-safe: the host serialises parses that share a provider.
class ParserServicesProvider {
 public:
  virtual ~ParserServicesProvider() = default;

  /// Returns the contributor data parsers in service order; may be empty.
  virtual std::vector<std::shared_ptr<contributordata::LineContributorDataParser>>
  getLineContributorDataParsers() = 0;

  /// Returns the code element parsers: the default one last, all others before it in service
  /// order. Never empty; the last entry is null when no default parser is registered.
  virtual std::vector<std::shared_ptr<code::CodeElementParser>> getCodeElementParsers() = 0;
};

}  // namespace quenlith::build::markup::services

CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(
    quenlith::build::markup::services::ParserServicesProvider,
    "quenlith::build::markup::services::ParserServicesProvider")

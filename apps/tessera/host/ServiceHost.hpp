#pragma once

#include <memory>
#include <string>
#include <vector>

#include "quenlith/shared/appendix/MarkerAppendix.hpp"
#include "tessera/session/SnippetSession.hpp"

namespace tessera::host {

/// Runs the framework with the parsers' bundle in it.
class ServiceHost {
 public:
  /// Starts the framework, the Declarative Services runtime, the parsers' bundle and, in this
  /// order, `extensionBundles`, and offers an appendix as a service. Throws ProblemError, with
  /// everything stopped again, when a bundle cannot be used or a parser does not appear.
  explicit ServiceHost(const std::vector<std::string>& extensionBundles);

  /// Stops everything in the opposite order. Parsers that are still held may be let go of
  /// later, but not used.
  ~ServiceHost();
  ServiceHost(const ServiceHost&) = delete;
  ServiceHost& operator=(const ServiceHost&) = delete;

  /// Returns the snippet parsers as they are to be asked: in service order, the default one last.
  std::vector<session::NamedParser> snippetParsers() const;

  /// The appendix that the parsers ask.
  quenlith::shared::appendix::MarkerAppendix& appendix() noexcept;

 private:
  struct Running;

  std::unique_ptr<Running> running;
};

}  // namespace tessera::host

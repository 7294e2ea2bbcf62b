#pragma once

#include <memory>
#include <string>
#include <vector>

#include "quenlith/build/markup/code/CodeElementParser.hpp"
#include "quenlith/shared/appendix/MarkerAppendix.hpp"
#include "tessera/host/RunningBundles.hpp"
#include "tessera/host/startBundles.hpp"
#include "tessera/session/NamedParser.hpp"

namespace tessera::host {

/// Runs the framework and the program's bundles in it.
class ServiceHost {
 public:
  /// Starts the framework, the Declarative Services runtime, the parsers' bundle, the bundle for
  /// pieces if they are kept and, in this order, `extensionBundles`, and registers an appendix as a
  /// service. Throws ProblemError, with everything stopped again, when a bundle or one of its
  /// components cannot be used.
  ServiceHost(const std::vector<std::string>& extensionBundles, Pieces pieces);

  /// Stops everything in the opposite order. Parsers that are still held may be released later,
  /// but not used.
  ~ServiceHost();
  ServiceHost(const ServiceHost&) = delete;
  ServiceHost& operator=(const ServiceHost&) = delete;

  /// Returns the snippet parsers in the order in which to ask them: service order, the default one
  /// last. Throws ProblemError when a snippet parser of the parsers' bundle is missing or cannot be
  /// created.
  std::vector<session::NamedParser> snippetParsers() const;

  /// Returns the parsers of bundles for the text of markers, in no particular order.
  std::vector<std::shared_ptr<quenlith::build::markup::code::CodeElementParser>>
  codeElementParsers() const;

  /// Lets the parsers' bundle look up the parsers of other bundles, which it otherwise does when it
  /// parses its first line.
  void findLineParsers() const;

  /// The appendix that the parsers look entries up in.
  quenlith::shared::appendix::MarkerAppendix& appendix() noexcept;

 private:
  std::shared_ptr<quenlith::shared::appendix::MarkerAppendix> parserAppendix;
  std::unique_ptr<RunningBundles> running;
};

}  // namespace tessera::host

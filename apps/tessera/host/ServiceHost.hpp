#pragma once

#include <memory>
#include <string>
#include <vector>

#include "quenlith/build/markup/code/CodeElementParser.hpp"
#include "quenlith/shared/appendix/MarkerAppendix.hpp"
#include "tessera/session/NamedParser.hpp"

namespace tessera::host {

/// What becomes of the pieces of a line that output and control markers own: the program's bundle
/// for them keeps them as nodes. Without it they are dropped, unless another bundle accepts the
/// marker.
enum class Pieces { kKept, kDropped };

/// Whether errors and warnings of the framework while it starts are reported. One process of
/// several that do the same does.
enum class StartEvents { kReported, kDropped };

/// Runs the framework and the program's bundles in it.
class ServiceHost {
 public:
  /// Starts the framework, the Declarative Services runtime, the parsers' bundle, the bundle for
  /// pieces if they are kept and, in this order, `extensionBundles`, and registers an appendix as a
  /// service. Throws ProblemError, with everything stopped again, when a bundle cannot be used or a
  /// parser that the program needs is not registered.
  ServiceHost(const std::vector<std::string>& extensionBundles, Pieces pieces,
              StartEvents startEvents = StartEvents::kReported);

  /// Stops everything in the opposite order. Parsers that are still held may be released later,
  /// but not used.
  ~ServiceHost();
  ServiceHost(const ServiceHost&) = delete;
  ServiceHost& operator=(const ServiceHost&) = delete;

  /// Returns the snippet parsers in the order in which to ask them: service order, the default one
  /// last. Throws ProblemError when a snippet parser of the parsers' bundle cannot be created.
  std::vector<session::NamedParser> snippetParsers() const;

  /// Returns the parsers of bundles for the text of markers, in no particular order.
  std::vector<std::shared_ptr<quenlith::build::markup::code::CodeElementParser>>
  codeElementParsers() const;

  /// The appendix that the parsers look entries up in.
  quenlith::shared::appendix::MarkerAppendix& appendix() noexcept;

 private:
  struct Running;

  std::unique_ptr<Running> running;
};

}  // namespace tessera::host

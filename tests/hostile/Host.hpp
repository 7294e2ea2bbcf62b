#pragma once

#include <memory>
#include <vector>

#include "quenlith/build/markup/services/ParserServicesProvider.hpp"
#include "quenlith/shared/appendix/MarkerAppendix.hpp"
#include "tessera/session/SnippetSession.hpp"

namespace hostile {

/// The parsers that `tessera parse` uses, connected without a framework, so that all their code can
/// be compiled into the test program.
class Host {
 public:
  Host();

  tessera::session::SnippetSession makeSession(tessera::session::Recording* recording) const;
  std::vector<tessera::session::NamedParser> makeParsers() const;
  quenlith::shared::appendix::MarkerAppendix& appendix() const noexcept { return *entries; }

 private:
  std::shared_ptr<quenlith::shared::appendix::MarkerAppendix> entries;
  std::shared_ptr<quenlith::build::markup::services::ParserServicesProvider> provider;
};

}  // namespace hostile

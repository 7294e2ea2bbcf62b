#pragma once

#include <memory>
#include <string>
#include <vector>

#include "quenlith/shared/appendix/MarkerAppendix.hpp"
#include "tessera/host/RunningBundles.hpp"

namespace tessera::host {

/// What becomes of the pieces of a line that output and control markers own: the program's bundle
/// for them keeps them as nodes. Without it they are dropped, unless another bundle accepts the
/// marker.
enum class Pieces { kKept, kDropped };

/// Starts the Declarative Services runtime, the parsers' bundle, the bundle for pieces if they are
/// kept and, in this order, `extensionBundles`, and registers `appendix` as a service.
void startBundles(RunningBundles& running,
                  const std::shared_ptr<quenlith::shared::appendix::MarkerAppendix>& appendix,
                  Pieces pieces, const std::vector<std::string>& extensionBundles);

}  // namespace tessera::host

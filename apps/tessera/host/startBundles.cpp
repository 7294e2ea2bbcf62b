#include "tessera/host/startBundles.hpp"

#include "tessera/host/findBundles.hpp"

namespace tessera::host {

void startBundles(RunningBundles& running,
                  const std::shared_ptr<quenlith::shared::appendix::MarkerAppendix>& appendix,
                  Pieces pieces, const std::vector<std::string>& extensionBundles) {
  const BundleFiles files = findBundles();
  running.start(files.declarativeServices, BundleRole::kRuntime);
  running.registerAppendix(appendix);
  running.start(files.parsers, BundleRole::kParsers);
  if (pieces == Pieces::kKept) running.start(files.pieces, BundleRole::kPieces);
  for (const std::string& file : extensionBundles) running.start(file, BundleRole::kExtension);
  running.settle();
}

}  // namespace tessera::host

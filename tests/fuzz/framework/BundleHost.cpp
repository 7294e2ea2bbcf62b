#include "fuzz/framework/BundleHost.hpp"

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkFactory.h>

#include <stdexcept>

#include "fuzz/require.hpp"

namespace quenlith::fuzz {

namespace {

cppmicroservices::Framework& runningFramework() {
  static cppmicroservices::Framework framework = [] {
    auto made = cppmicroservices::FrameworkFactory().NewFramework();
    made.Start();
    return made;
  }();
  return framework;
}

}  // namespace

InstalledBundles installOnce(const std::string& path) {
  auto context = runningFramework().GetBundleContext();
  InstalledBundles result;
  try {
    for (auto& bundle : context.InstallBundles(path)) {
      result.headers.push_back(bundle.GetHeaders());
      bundle.Uninstall();
    }
    require(!result.headers.empty(), "a library that is not refused has a bundle");
  } catch (const std::runtime_error& error) {
    result.refusal = error.what();
    require(result.headers.empty(), "a library is refused as a whole");
  }
  require(context.GetBundles().size() == 1, "no bundle is left but the system's");
  return result;
}

}  // namespace quenlith::fuzz

#pragma once

#include <chrono>
#include <memory>

#include "lifecycle/BundlePrivate.hpp"

namespace cppmicroservices::detail {

/// The framework as a bundle. When it stops, all other bundles are removed: a framework that is
/// started again has none.
class SystemBundle final : public BundlePrivate {
 public:
  explicit SystemBundle(std::shared_ptr<FrameworkCore> framework);

  void init();
  void start() override;
  void stop() override;
  void uninstall() override;

  /// Says whether bundles may be started.
  bool acceptsBundles() const;

  /// Waits until the framework does not run, at most for `timeout`; zero waits without a limit.
  FrameworkEvent waitForStop(const std::chrono::milliseconds& timeout);

 private:
  bool isRunning() const;
  void initialize();
  void stopBundles();
};

}  // namespace cppmicroservices::detail

#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
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

  /// Stops the bundles, the one installed last first, then the framework. Returns at once when it
  /// is stopping already. A bundle that is starting or stopping in this thread, or that does not
  /// end that within 5 seconds in another one, is stopped when that ends, and the framework after
  /// it.
  void stop() override;
  void uninstall() override;

  /// Like `stop`.
  void abandon() noexcept override;

  /// Ends the stop of the framework when the last of its bundles has stopped.
  void endOneStop() noexcept;

  /// Says whether bundles may be started.
  bool acceptsBundles() const;

  /// Waits until the framework does not run, at most for `timeout`; zero waits without a limit. In
  /// a thread for whose start or stop of a bundle the framework waits, zero gives an error at once.
  FrameworkEvent waitForStop(const std::chrono::milliseconds& timeout);

 private:
  bool isRunning() const;
  void initialize();
  bool activate();
  void stopInTransition();
  void stopBundles() noexcept;
  void endStop() noexcept;
  bool waitsForThisThread();

  // The bundles that have not stopped yet, and one for `stop`.
  std::atomic<std::size_t> pendingStops = 0;
  std::size_t stopCount = 0;
};

}  // namespace cppmicroservices::detail

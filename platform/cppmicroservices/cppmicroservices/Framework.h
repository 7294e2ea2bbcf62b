#pragma once

#include <chrono>
#include <memory>

#include "cppmicroservices/Bundle.h"
#include "cppmicroservices/FrameworkEvent.h"

namespace cppmicroservices {

/// A framework: bundles and the services that they register. It is itself the bundle with the
/// id 0, whose `Start` and `Stop` start and stop the framework.
///
/// `Stop` stops the bundles, the one that was installed last first. It may be called in a listener
/// or an activator: a bundle that is starting or stopping at that time is stopped when that ends,
/// and `Stop` returns before. The framework stops, too, when the last handle of it or of one of its
/// bundles is destroyed. It cannot be started again then: `Start` and `Init` throw
/// `std::runtime_error` on a handle that a listener got during that stop.
///
/// A framework that is started again has no bundles.
class QUENLITH_CPPMICROSERVICES_EXPORT Framework : public Bundle {
 public:
  /// Takes a bundle that is a framework. Throws `std::logic_error` when it is not.
  explicit Framework(Bundle bundle);

  /// Gives the framework a context, so that bundles can be installed. Does nothing when it has
  /// one.
  void Init();

  /// Waits until the framework has stopped, at most for `timeout`; zero waits without a limit. A
  /// start right after the stop does not prolong the wait.
  /// Returns at once unless the framework is starting, active or stopping. With zero it returns an
  /// error at once in an activator or a listener for which the framework would wait.
  FrameworkEvent WaitForStop(const std::chrono::milliseconds& timeout);

 private:
  friend class FrameworkFactory;
  Framework(std::shared_ptr<detail::BundlePrivate> bundle,
            std::shared_ptr<detail::FrameworkOwner> frameworkOwner);
};

}  // namespace cppmicroservices

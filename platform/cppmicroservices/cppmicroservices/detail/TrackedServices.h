#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/FrameworkExport.h"
#include "cppmicroservices/ListenerToken.h"
#include "cppmicroservices/ServiceReference.h"

namespace cppmicroservices::detail {

/// The part of `ServiceTracker` that does not depend on the types: the services that match a
/// filter, and the object of each.
///
/// Objects are `void` pointers to what `Callbacks::adding` returns. May be used from several
/// threads.
class QUENLITH_CPPMICROSERVICES_EXPORT TrackedServices {
 public:
  using Object = std::shared_ptr<void>;
  struct Entry {
    ServiceReferenceU reference;
    Object object;
  };

  /// What the customizer does. Called with no lock held.
  struct Callbacks {
    std::function<Object(const ServiceReferenceU&)> adding;
    std::function<void(const ServiceReferenceU&, const Object&)> modified;
    std::function<void(const ServiceReferenceU&, const Object&)> removed;
  };

  /// Which services are tracked: those under `interfaceId`, if it is not empty, that match
  /// `filter`.
  struct Criteria {
    std::string interfaceId;
    std::string filter;
  };

  TrackedServices(const BundleContext& context, Criteria criteria, Callbacks callbacks);
  ~TrackedServices();
  TrackedServices(const TrackedServices&) = delete;
  TrackedServices& operator=(const TrackedServices&) = delete;

  /// Returns the criteria for the service of `reference` only.
  static Criteria only(const ServiceReferenceBase& reference);

  BundleContext& bundleContext() { return context; }

  /// Starts to track. Does nothing when it is open. Throws `std::runtime_error` when the context is
  /// not valid, `std::invalid_argument` when the filter cannot be parsed, and what `adding` throws;
  /// it is closed then.
  void open();

  /// Removes all services, and waits for callbacks in other threads. When another thread closes it,
  /// waits for that, unless this is called by a callback. Throws the first exception of `removed`
  /// after everything else was done.
  void close();

  /// Waits until a service is tracked, at most for `timeout`, without a limit when there is none.
  /// Returns its object, null when there is none or the tracker is closed. Throws
  /// `std::logic_error` when the context is or becomes invalid.
  Object wait(std::optional<std::chrono::nanoseconds> timeout);

  /// Returns what is tracked, in ascending order of the references.
  std::vector<Entry> entries() const;

  /// Returns the preferred service, an invalid reference when there is none.
  ServiceReferenceU best() const;
  Object find(const ServiceReferenceU& reference) const;
  void remove(const ServiceReferenceU& reference);

  int size() const;

  /// Returns the number of changes since the tracker was opened, -1 when it is closed.
  int changes() const;

 private:
  class Session;

  std::shared_ptr<Session> current() const;
  void removeListener(ListenerToken listener) noexcept;
  void waitForOthers(int own) noexcept;

  BundleContext context;
  const Criteria criteria;
  const Callbacks callbacks;
  struct State;
  const std::unique_ptr<State> state;
};

}  // namespace cppmicroservices::detail

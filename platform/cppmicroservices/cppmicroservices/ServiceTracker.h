#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/LDAPFilter.h"
#include "cppmicroservices/ServiceException.h"
#include "cppmicroservices/ServiceReference.h"
#include "cppmicroservices/ServiceTrackerCustomizer.h"
#include "cppmicroservices/detail/TrackedServices.h"

namespace cppmicroservices {

/// Keeps the set of the services that match a condition, with an object of type `T` for each: the
/// service object itself, or what a customizer makes of it.
///
/// Thread-safe. Calls the customizer with no lock held. Its destructor closes it.
template <class S, class T = S>
class ServiceTracker : protected ServiceTrackerCustomizer<S, T> {
 public:
  using TrackedParamType = typename ServiceTrackerCustomizer<S, T>::TrackedParamType;
  using TrackingMap = std::unordered_map<ServiceReference<S>, std::shared_ptr<TrackedParamType>>;

  /// Tracks the service of `reference`. Without a `customizer`, which is borrowed, the tracker
  /// calls its own functions.
  ServiceTracker(const BundleContext& context, const ServiceReference<S>& reference,
                 ServiceTrackerCustomizer<S, T>* customizer = nullptr)
      : ServiceTracker(context, detail::TrackedServices::only(reference), customizer) {}

  /// Like the form above, but tracks the services under the identifier `clazz`.
  ServiceTracker(const BundleContext& context, const std::string& clazz,
                 ServiceTrackerCustomizer<S, T>* customizer = nullptr)
      : ServiceTracker(context, detail::TrackedServices::Criteria{clazz, ""}, customizer) {}

  /// Like the form above, but tracks the services that `filter` matches.
  ServiceTracker(const BundleContext& context, const LDAPFilter& filter,
                 ServiceTrackerCustomizer<S, T>* customizer = nullptr)
      : ServiceTracker(context, detail::TrackedServices::Criteria{"", filter.ToString()},
                       customizer) {}

  /// Like the form above, but tracks the services under `S`. Throws `ServiceException` when `S` has
  /// no identifier.
  ServiceTracker(const BundleContext& context, ServiceTrackerCustomizer<S, T>* customizer = nullptr)
      : ServiceTracker(context, ownCriteria(), customizer) {}

  ~ServiceTracker() override {
    try {
      services.close();
    } catch (...) {
      // What the customizer throws is for the caller of `Close`.
    }
  }

  /// Starts to track. Does nothing when the tracker is open. Throws `std::runtime_error` when the
  /// context is no longer valid, and what the customizer throws; the tracker is closed then.
  virtual void Open() { services.open(); }

  /// Stops to track: removes every service, and waits until no other thread is in the customizer.
  /// Also waits for a `Close` in another thread, unless the customizer calls it.
  virtual void Close() { services.close(); }

  /// Waits until a service is tracked or the tracker is closed; returns what `GetService` does.
  /// Throws `std::logic_error` when the context is or becomes invalid.
  std::shared_ptr<TrackedParamType> WaitForService() { return typed(services.wait(std::nullopt)); }

  /// Like the form above, but waits at most for `time`; zero waits without a limit. Throws
  /// `std::invalid_argument` when it is negative.
  template <class Rep, class Period>
  std::shared_ptr<TrackedParamType> WaitForService(const std::chrono::duration<Rep, Period>& time) {
    if (time < time.zero()) throw std::invalid_argument("the time to wait is negative");
    if (time == time.zero()) return WaitForService();
    return typed(services.wait(inNanoseconds(time)));
  }

  /// Returns references to the tracked services, the preferred one last.
  virtual std::vector<ServiceReference<S>> GetServiceReferences() const {
    std::vector<ServiceReference<S>> references;
    for (const auto& entry : services.entries()) references.emplace_back(entry.reference);
    return references;
  }

  /// Returns the preferred one of the tracked services. Throws `ServiceException` when there is
  /// none.
  virtual ServiceReference<S> GetServiceReference() const {
    ServiceReferenceU best = services.best();
    if (!best) throw ServiceException("No service is being tracked");
    return best;
  }

  /// Returns the object of a service, null when it is not tracked.
  virtual std::shared_ptr<TrackedParamType> GetService(const ServiceReference<S>& reference) const {
    return typed(services.find(reference));
  }

  /// Returns the objects of the tracked services.
  virtual std::vector<std::shared_ptr<TrackedParamType>> GetServices() const {
    std::vector<std::shared_ptr<TrackedParamType>> objects;
    for (const auto& entry : services.entries()) objects.push_back(typed(entry.object));
    return objects;
  }

  /// Returns the object of the preferred service, null when none is tracked.
  virtual std::shared_ptr<TrackedParamType> GetService() const {
    return typed(services.find(services.best()));
  }

  /// Removes a service, if it is tracked.
  virtual void Remove(const ServiceReference<S>& reference) { services.remove(reference); }

  virtual int Size() const { return services.size(); }

  /// Returns how often a service was added, modified or removed since the tracker was opened; -1
  /// when it is closed.
  virtual int GetTrackingCount() const { return services.changes(); }

  /// Replaces `tracked` by what is tracked.
  virtual void GetTracked(TrackingMap& tracked) const {
    tracked.clear();
    for (const auto& entry : services.entries()) {
      tracked.emplace(ServiceReference<S>(entry.reference), typed(entry.object));
    }
  }

  virtual bool IsEmpty() const { return services.size() == 0; }

 protected:
  /// Returns the service object, null when the service was unregistered meanwhile. Throws
  /// `std::runtime_error` when `T` is another type, `std::invalid_argument` for an invalid
  /// reference.
  std::shared_ptr<TrackedParamType> AddingService(const ServiceReference<S>& reference) override {
    return ServiceTrackerCustomizer<S, T>::TypeTraits::ConvertToTrackedType(serviceOf(reference));
  }

  void ModifiedService(const ServiceReference<S>& /*reference*/,
                       const std::shared_ptr<TrackedParamType>& /*service*/) override {}
  void RemovedService(const ServiceReference<S>& /*reference*/,
                      const std::shared_ptr<TrackedParamType>& /*service*/) override {}

 private:
  using Object = detail::TrackedServices::Object;

  ServiceTracker(const BundleContext& context, detail::TrackedServices::Criteria criteria,
                 ServiceTrackerCustomizer<S, T>* customizer)
      : services(context, std::move(criteria),
                 callbacks(customizer == nullptr ? this : customizer)) {}

  static detail::TrackedServices::Criteria ownCriteria() {
    const std::string& interfaceId = us_service_interface_iid<S>();
    detail::requireInterfaceId(interfaceId);
    return {interfaceId, ""};
  }

  static detail::TrackedServices::Callbacks callbacks(ServiceTrackerCustomizer<S, T>* customizer) {
    return {[customizer](const ServiceReferenceU& reference) {
              return untyped(customizer->AddingService(reference));
            },
            [customizer](const ServiceReferenceU& reference, const Object& object) {
              customizer->ModifiedService(reference, typed(object));
            },
            [customizer](const ServiceReferenceU& reference, const Object& object) {
              customizer->RemovedService(reference, typed(object));
            }};
  }

  // Returns the longest time that nanoseconds can express when `time` is longer.
  template <class Rep, class Period>
  static std::chrono::nanoseconds inNanoseconds(const std::chrono::duration<Rep, Period>& time) {
    constexpr auto kLongest = std::chrono::nanoseconds::max();
    return std::chrono::duration<double>(time) < std::chrono::duration<double>(kLongest)
               ? std::chrono::duration_cast<std::chrono::nanoseconds>(time)
               : kLongest;
  }

  auto serviceOf(const ServiceReference<S>& reference)
      -> decltype(std::declval<BundleContext&>().GetService(reference)) {
    try {
      return services.bundleContext().GetService(reference);
    } catch (const std::invalid_argument&) {
      // Only a reference that never had a service has no properties.
      if (reference.GetPropertyKeys().empty()) throw;
      return nullptr;
    }
  }

  static Object untyped(const std::shared_ptr<TrackedParamType>& object) {
    return std::const_pointer_cast<std::remove_const_t<TrackedParamType>>(object);
  }
  static std::shared_ptr<TrackedParamType> typed(const Object& object) {
    return std::static_pointer_cast<TrackedParamType>(object);
  }

  detail::TrackedServices services;
};

}  // namespace cppmicroservices

#pragma once

#include <memory>
#include <stdexcept>
#include <type_traits>

#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceReference.h"

namespace cppmicroservices {

/// Decides what a `ServiceTracker<S, T>` tracks: an object of type `T` for each service under `S`.
///
/// It is called in the thread of the change, with no lock held, possibly from several threads at
/// once. It must live until the tracker is closed.
template <class S, class T = S>
struct ServiceTrackerCustomizer {
  /// What a tracker returns: `T`, or the interface map when no type is given.
  struct TypeTraits {
    using ServiceType = S;
    using TrackedType = T;
    using TrackedParamType = std::conditional_t<std::is_void_v<T>, const InterfaceMap, T>;
    using ServiceObject = std::conditional_t<std::is_void_v<S>, const InterfaceMap, S>;

    /// Returns the service itself. Throws `std::runtime_error` when the tracker tracks something
    /// else.
    static std::shared_ptr<TrackedParamType> ConvertToTrackedType(
        const std::shared_ptr<ServiceObject>& service) {
      if constexpr (std::is_same_v<ServiceObject, TrackedParamType>) {
        return service;
      } else {
        throw std::runtime_error(
            "a tracker of objects that are not the services needs a ServiceTrackerCustomizer");
      }
    }
  };
  using TrackedParamType = typename TypeTraits::TrackedParamType;

  virtual ~ServiceTrackerCustomizer() = default;

  /// Called before a service is tracked. Returns the object to track, null to ignore the service.
  virtual std::shared_ptr<TrackedParamType> AddingService(const ServiceReference<S>& reference) = 0;

  /// Called after the properties of a tracked service have changed.
  virtual void ModifiedService(const ServiceReference<S>& reference,
                               const std::shared_ptr<TrackedParamType>& service) = 0;

  /// Called after a service is no longer tracked.
  virtual void RemovedService(const ServiceReference<S>& reference,
                              const std::shared_ptr<TrackedParamType>& service) = 0;
};

}  // namespace cppmicroservices

#pragma once

#include <memory>

#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceReference.h"

namespace cppmicroservices {

class BundleContext;
template <class S>
class ServiceObjects;

namespace detail {

/// The part of `ServiceObjects` that does not depend on the interface.
class QUENLITH_CPPMICROSERVICES_EXPORT ServiceObjectsBase {
 protected:
  ServiceObjectsBase(const BundleContext& bundleContext, const ServiceReferenceBase& service);
  ServiceObjectsBase(ServiceObjectsBase&& other) noexcept;
  ServiceObjectsBase& operator=(ServiceObjectsBase&& other) noexcept;
  ~ServiceObjectsBase();

  std::shared_ptr<void> object() const;
  InterfaceMapConstPtr interfaceMap() const;

  ServiceReferenceBase reference;

 private:
  std::unique_ptr<BundleContext> context;
};

}  // namespace detail

/// Gets the objects of one service for one bundle.
template <class S>
class ServiceObjects : private detail::ServiceObjectsBase {
 public:
  /// Returns the service object as `BundleContext::GetService` does, null when the service was
  /// unregistered. Throws `std::runtime_error` when the context is no longer valid.
  std::shared_ptr<S> GetService() const { return std::static_pointer_cast<S>(object()); }

  ServiceReference<S> GetServiceReference() const { return reference; }

 private:
  friend class BundleContext;
  using detail::ServiceObjectsBase::ServiceObjectsBase;
};

/// Like the general form, but for all interfaces of a service.
template <>
class ServiceObjects<void> : private detail::ServiceObjectsBase {
 public:
  InterfaceMapConstPtr GetService() const { return interfaceMap(); }
  ServiceReferenceU GetServiceReference() const { return reference; }

 private:
  friend class BundleContext;
  using detail::ServiceObjectsBase::ServiceObjectsBase;
};

}  // namespace cppmicroservices

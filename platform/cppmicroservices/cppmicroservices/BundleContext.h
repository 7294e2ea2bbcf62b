#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "cppmicroservices/FrameworkExport.h"
#include "cppmicroservices/ListenerFunctors.h"
#include "cppmicroservices/ListenerToken.h"
#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceObjects.h"
#include "cppmicroservices/ServiceProperties.h"
#include "cppmicroservices/ServiceRegistration.h"
#include "cppmicroservices/detail/MemberListener.h"
#include "cppmicroservices/detail/ServiceCount.h"

namespace cppmicroservices {

namespace detail {
class BundlePrivate;
}

class Bundle;
class BundleContextPrivate;
class ServiceFactory;

/// The access of a bundle to its framework: it installs bundles, registers, finds and gets
/// services, and adds listeners. Valid from the start of its bundle to the end of its stop.
///
/// Every operation but the comparisons throws `std::runtime_error` with the text "The bundle
/// context is no longer valid" when the context is not valid. May be used from several threads.
class QUENLITH_CPPMICROSERVICES_EXPORT BundleContext {
 public:
  /// Makes an invalid context.
  BundleContext() = default;

  /// Makes the context invalid.
  BundleContext& operator=(std::nullptr_t) { return *this = BundleContext(); }

  explicit operator bool() const;
  bool operator==(const BundleContext& other) const = default;
  bool operator<(const BundleContext& other) const;

  Bundle GetBundle() const;

  /// Returns the bundle with that id, an invalid one when there is none.
  Bundle GetBundle(long id) const;

  /// Returns the bundles of the library at `location`.
  std::vector<Bundle> GetBundles(const std::string& location) const;

  /// Returns all bundles, the framework among them, by ascending id.
  std::vector<Bundle> GetBundles() const;

  /// Installs the bundles of the library at `location`, in the order of their paths in its archive,
  /// and returns all of them by ascending id. Bundles that are installed already stay unchanged;
  /// those that were uninstalled are installed again. Throws `std::runtime_error` when the file
  /// cannot be used: its text names the file, the problem and the remedy.
  std::vector<Bundle> InstallBundles(const std::string& location);

  /// Registers a service under the interfaces of the map and tells the listeners.
  ///
  /// The framework sets the properties "objectclass", "service.id" and "service.scope". Throws
  /// `std::invalid_argument` when the map is null or empty or has a null object, and
  /// `std::runtime_error` when two keys of the properties differ in case only.
  [[nodiscard]] ServiceRegistrationU RegisterService(
      const InterfaceMapConstPtr& service,
      const ServiceProperties& properties = ServiceProperties());

  /// Like the general form, but under the given interfaces.
  template <class I1, class... Interfaces, class Impl>
  ServiceRegistration<I1, Interfaces...> RegisterService(
      const std::shared_ptr<Impl>& impl,
      const ServiceProperties& properties = ServiceProperties()) {
    const InterfaceMapConstPtr service = MakeInterfaceMap<I1, Interfaces...>(impl);
    return RegisterService(service, properties);
  }

  /// Like the general form, but `factory` makes the object of each bundle.
  template <class I1, class... Interfaces>
  ServiceRegistration<I1, Interfaces...> RegisterService(
      const std::shared_ptr<ServiceFactory>& factory,
      const ServiceProperties& properties = ServiceProperties()) {
    const InterfaceMapConstPtr service = MakeInterfaceMap<I1, Interfaces...>(factory);
    return RegisterService(service, properties);
  }

  /// Returns references to the services that were registered under `interfaceId` and that
  /// `filter` matches: highest ranking first, then lowest service id. An empty text matches all.
  /// Throws `std::invalid_argument` when `filter` cannot be parsed, unless there are no
  /// services to match.
  std::vector<ServiceReferenceU> GetServiceReferences(const std::string& interfaceId,
                                                      const std::string& filter = std::string());

  /// Like the general form. Throws `ServiceException` when `S` has no identifier.
  template <class S>
  std::vector<ServiceReference<S>> GetServiceReferences(const std::string& filter = std::string()) {
    // Initialized at compile time, so that a bundle has no object that is made at run time.
    static std::atomic<const detail::ServiceCount*> cachedCount = nullptr;
    const detail::ServiceCount* count = cachedCount.load(std::memory_order_acquire);
    if (count == nullptr) {
      count = &detail::serviceCount(us_service_interface_iid<S>());
      cachedCount.store(count, std::memory_order_release);
    }
    // A lookup of an interface that nobody provides is done for every parsed line: it is this read.
    // The context is checked after it, since a context that is valid then was valid at the read.
    if (count->load(std::memory_order_acquire) == 0) {
      valid();
      return {};
    }
    const auto found = GetServiceReferences(us_service_interface_iid<S>(), filter);
    return std::vector<ServiceReference<S>>(found.begin(), found.end());
  }

  /// Returns the first of the references, an invalid one when there is none.
  ServiceReferenceU GetServiceReference(const std::string& interfaceId);

  /// Like the general form. Throws `ServiceException` when `S` has no identifier.
  template <class S>
  ServiceReference<S> GetServiceReference() {
    const std::string& interfaceId = us_service_interface_iid<S>();
    detail::requireInterfaceId(interfaceId);
    return GetServiceReference(interfaceId);
  }

  /// Returns the service object, null when its factory failed or the service is unregistered during
  /// the call. The bundle uses the service until the last copy of the pointer is destroyed. Throws
  /// `std::invalid_argument` when `reference` does not refer to a registered service of this
  /// framework.
  std::shared_ptr<void> GetService(const ServiceReferenceBase& reference);

  /// Like the form above, but returns the objects of all interfaces.
  InterfaceMapConstPtr GetService(const ServiceReferenceU& reference);

  template <class S>
  std::shared_ptr<S> GetService(const ServiceReference<S>& reference) {
    const ServiceReferenceBase& base = reference;
    return std::static_pointer_cast<S>(GetService(base));
  }

  /// Returns an object that gets the service. Throws like `GetService`.
  template <class S>
  ServiceObjects<S> GetServiceObjects(const ServiceReference<S>& reference) {
    return ServiceObjects<S>(*this, reference);
  }

  /// Adds a listener to the changes of the services that `filter` matches, all when it is empty.
  /// It is called in the thread of the change, and removed when the bundle stops. Throws
  /// `std::invalid_argument` when `filter` cannot be parsed.
  ListenerToken AddServiceListener(const ServiceListener& listener,
                                   const std::string& filter = std::string());
  /// Like `AddServiceListener`, but for the changes of bundles.
  ListenerToken AddBundleListener(const BundleListener& listener);
  /// Like `AddServiceListener`, but for the events of the framework.
  ListenerToken AddFrameworkListener(const FrameworkListener& listener);

  /// Like the forms above, but the listener calls `callback` of `receiver`, which is borrowed.
  template <class R>
  [[deprecated("use AddServiceListener with a function")]] ListenerToken AddServiceListener(
      R* receiver, void (R::*callback)(const ServiceEvent&),
      const std::string& filter = std::string()) {
    return AddServiceListener(
        ServiceListener(detail::MemberListener<R, ServiceEvent>{receiver, callback}), filter);
  }
  template <class R>
  [[deprecated("use AddBundleListener with a function")]] ListenerToken AddBundleListener(
      R* receiver, void (R::*callback)(const BundleEvent&)) {
    return AddBundleListener(
        BundleListener(detail::MemberListener<R, BundleEvent>{receiver, callback}));
  }
  template <class R>
  [[deprecated("use AddFrameworkListener with a function")]] ListenerToken AddFrameworkListener(
      R* receiver, void (R::*callback)(const FrameworkEvent&)) {
    return AddFrameworkListener(
        FrameworkListener(detail::MemberListener<R, FrameworkEvent>{receiver, callback}));
  }

  /// Remove a listener that this bundle has added; do nothing when there is none. A function
  /// pointer is found by its value, any other function object by its type: of several of one type,
  /// which a lambda in a loop or `std::bind` make, the first is removed. Use `RemoveListener`, of
  /// which the same is true otherwise.
  [[deprecated("use RemoveListener")]] void RemoveServiceListener(const ServiceListener& listener) {
    removeListener(listener, nullptr);
  }
  [[deprecated("use RemoveListener")]] void RemoveBundleListener(const BundleListener& listener) {
    removeListener(listener, nullptr);
  }
  [[deprecated("use RemoveListener")]] void RemoveFrameworkListener(
      const FrameworkListener& listener) {
    removeListener(listener, nullptr);
  }

  /// Like the forms above, but for a listener that calls `callback` of `receiver`.
  template <class R>
  [[deprecated("use RemoveListener")]] void RemoveServiceListener(
      R* receiver, void (R::*callback)(const ServiceEvent&)) {
    using Listener = detail::MemberListener<R, ServiceEvent>;
    removeListener(ServiceListener(Listener{receiver, callback}), &Listener::equal);
  }
  template <class R>
  [[deprecated("use RemoveListener")]] void RemoveBundleListener(
      R* receiver, void (R::*callback)(const BundleEvent&)) {
    using Listener = detail::MemberListener<R, BundleEvent>;
    removeListener(BundleListener(Listener{receiver, callback}), &Listener::equal);
  }
  template <class R>
  [[deprecated("use RemoveListener")]] void RemoveFrameworkListener(
      R* receiver, void (R::*callback)(const FrameworkEvent&)) {
    using Listener = detail::MemberListener<R, FrameworkEvent>;
    removeListener(FrameworkListener(Listener{receiver, callback}), &Listener::equal);
  }

  /// Removes the listener of `token`; does nothing when there is none. A thread that is sending an
  /// event at that time may still be in the listener, or call it once more, after this has
  /// returned: it is not waited for, since the listener could wait for the caller.
  void RemoveListener(ListenerToken token);

 private:
  friend class detail::BundlePrivate;

  BundleContext(const std::shared_ptr<detail::BundlePrivate>& bundle, std::uint64_t generation)
      : d(bundle), generation(generation) {}
  detail::BundlePrivate& valid() const;
  InterfaceMapConstPtr acquire(const ServiceReferenceBase& reference) const;

  // `equal` says whether two listeners are the same one; null compares as the public form says.
  template <class Function>
  using Equal = bool (*)(const Function& left, const Function& right);
  void removeListener(const ServiceListener& listener, Equal<ServiceListener> equal);
  void removeListener(const BundleListener& listener, Equal<BundleListener> equal);
  void removeListener(const FrameworkListener& listener, Equal<FrameworkListener> equal);

  std::shared_ptr<detail::BundlePrivate> d;
  // Identifies the start of the bundle that the context belongs to; see BundlePrivate.
  std::uint64_t generation = 0;
};

namespace detail {
/// Returns the context for the handle that the framework gave to a bundle's library.
QUENLITH_CPPMICROSERVICES_EXPORT BundleContext MakeBundleContext(BundleContextPrivate* handle);
}  // namespace detail

}  // namespace cppmicroservices

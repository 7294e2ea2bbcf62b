#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "cppmicroservices/AnyMap.h"
#include "cppmicroservices/BundleVersion.h"
#include "cppmicroservices/FrameworkExport.h"

namespace cppmicroservices {

class BundleContext;
template <class S>
class ServiceReference;
using ServiceReferenceU = ServiceReference<void>;

namespace detail {
class BundlePrivate;
class FrameworkOwner;
}  // namespace detail

/// A handle of a bundle that was installed in a framework. Copies refer to the same bundle and
/// keep its framework running. May be used from several threads.
///
/// Every operation but the comparisons throws `std::invalid_argument` on an invalid object.
class QUENLITH_CPPMICROSERVICES_EXPORT Bundle {
 public:
  enum State : std::uint32_t {
    STATE_UNINSTALLED = 0x00000001,
    STATE_INSTALLED = 0x00000002,
    STATE_RESOLVED = 0x00000004,
    STATE_STARTING = 0x00000008,
    STATE_STOPPING = 0x00000010,
    STATE_ACTIVE = 0x00000020
  };

  /// Makes an invalid object.
  Bundle() = default;

  /// Makes the object invalid.
  Bundle& operator=(std::nullptr_t) { return *this = Bundle(); }

  explicit operator bool() const { return d != nullptr; }
  bool operator==(const Bundle& other) const { return d == other.d; }
  /// Orders by framework, then by bundle id; invalid objects come last.
  bool operator<(const Bundle& other) const;

  State GetState() const;

  /// Returns the bundle's context, an invalid one unless the bundle is starting, active or
  /// stopping.
  BundleContext GetBundleContext() const;

  /// Returns the id of the bundle, which is not used again in its framework. The framework has 0.
  long GetBundleId() const;

  /// Returns the absolute path of the bundle's library.
  std::string GetLocation() const;
  std::string GetSymbolicName() const;

  /// Returns the version in the manifest, 0.0.0 when there is none. That of the framework is the
  /// version of the API that it has.
  BundleVersion GetVersion() const;

  /// Returns the manifest; its keys are compared without regard to case. The reference
  /// is valid while the bundle is installed or has a handle.
  const AnyMap& GetHeaders() const;

  /// Returns the manifest as a map whose keys are compared with regard to case.
  [[deprecated("use GetHeaders")]] std::map<std::string, Any> GetProperties() const;

  /// Returns the value of `key` in the manifest, empty when there is none.
  [[deprecated("use GetHeaders")]] Any GetProperty(const std::string& key) const;

  /// Returns the keys of the manifest.
  [[deprecated("use GetHeaders")]] std::vector<std::string> GetPropertyKeys() const;

  /// Returns the symbol `name` of the library `handle`, null when it has none. Throws
  /// `std::runtime_error` unless the bundle is active, `std::invalid_argument` when `handle` is
  /// null or `name` is empty.
  void* GetSymbol(void* handle, const std::string& name) const;

  /// Returns references to the services that the bundle registered. Throws `std::logic_error`
  /// when it was uninstalled.
  std::vector<ServiceReferenceU> GetRegisteredServices() const;

  /// Returns references to the services that the bundle uses. Throws `std::logic_error` when it
  /// was uninstalled.
  std::vector<ServiceReferenceU> GetServicesInUse() const;

  /// Loads the library, gives it its context and calls the activator if there is one. Does nothing
  /// when the bundle is active. Waits up to 5 s for a start or stop in another thread.
  ///
  /// Throws `std::runtime_error` when the library cannot be used or the activator throws: the
  /// bundle is then stopped. Throws `std::logic_error` when the bundle was uninstalled, or is
  /// starting or stopping in this thread.
  void Start();

  /// Calls the activator, unregisters the bundle's services, releases those that it uses and
  /// removes its listeners. Does nothing when the bundle is not active. Waits and throws like
  /// `Start`; an exception of the activator is passed on after everything else was done.
  void Stop();

  /// Stops and removes the bundle. Its library stays loaded, but no other thread may call
  /// `GetBundleContext` in it meanwhile. Throws `std::logic_error` when it
  /// was uninstalled, `std::runtime_error` for the framework itself.
  void Uninstall();

 protected:
  Bundle(std::shared_ptr<detail::BundlePrivate> bundle,
         std::shared_ptr<detail::FrameworkOwner> frameworkOwner);

  detail::BundlePrivate& valid() const;

  std::shared_ptr<detail::BundlePrivate> d;
  std::shared_ptr<detail::FrameworkOwner> owner;

  friend class detail::BundlePrivate;
};

/// Writes id, location, name and state of the bundle.
QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& operator<<(std::ostream& os, const Bundle& bundle);
QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& operator<<(std::ostream& os, const Bundle* bundle);

/// Writes the name of the state without its prefix, nothing for a value that is not a state.
QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& operator<<(std::ostream& os, Bundle::State state);

}  // namespace cppmicroservices

template <>
struct std::hash<cppmicroservices::Bundle> {
  std::size_t operator()(const cppmicroservices::Bundle& bundle) const {
    return std::hash<std::string>()(bundle.GetSymbolicName());
  }
};

#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "lifecycle/BundleTable.hpp"
#include "lifecycle/LibraryBundle.hpp"
#include "lifecycle/SystemBundle.hpp"
#include "manifest/bundleManifests.hpp"
#include "registry/FrameworkListeners.hpp"
#include "registry/ServiceRegistry.hpp"

namespace cppmicroservices::detail {

class FrameworkOwner;

/// What the bundles of one framework share: the services, the listeners, the list of bundles.
class FrameworkCore : public std::enable_shared_from_this<FrameworkCore> {
 public:
  /// Returns a framework that was not started. `check` is called for the manifest of each bundle
  /// that is installed.
  static std::shared_ptr<FrameworkOwner> make(ManifestCheck check);

  explicit FrameworkCore(ManifestCheck checkManifest) : checkManifest(checkManifest) {}

  /// Installs those bundles of the library at `location` that are not installed, all or none, in
  /// the order of their paths in the archive. Returns all bundles of the library by ascending id.
  /// Throws `std::runtime_error` when the file cannot be used, `std::logic_error` when the
  /// framework stops.
  std::vector<Bundle> install(BundlePrivate& installer, const std::string& location);

  /// Removes `bundle` from the list, if it is there.
  void forget(const BundlePrivate& bundle) noexcept;

  /// Returns the bundle with that id, null when there is none. Throws like `systemBundle` for 0.
  std::shared_ptr<BundlePrivate> find(long id) const;

  /// Returns the installed bundle with the highest id up to `id`, null when there is none.
  std::shared_ptr<LibraryBundle> findLast(long id) const;

  /// Returns all bundles, or those of a library, by ascending id.
  std::vector<Bundle> bundles() const;
  std::vector<Bundle> bundlesAt(const std::string& location) const;
  std::vector<std::shared_ptr<LibraryBundle>> libraryBundles() const;

  /// Returns the framework's bundle, null when its owner is gone and nothing else keeps it.
  std::shared_ptr<SystemBundle> findSystemBundle() const { return system.lock(); }

  /// Returns the framework's bundle. Throws like `throwInvalidContext` when there is none: a
  /// context was valid when its caller began, and is not any more.
  std::shared_ptr<SystemBundle> systemBundle() const;

  FrameworkListeners listeners;
  ServiceRegistry services{listeners};
  std::weak_ptr<FrameworkOwner> owner;

 private:
  struct Installed {
    std::vector<Bundle> added;
    std::vector<Bundle> all;
  };

  Installed add(const std::string& location, const std::vector<AnyMap>& manifests);
  bool isInstalledCompletely(const std::string& location) const;
  [[noreturn]] static void refuseTwin(const BundlePrivate& added, const BundlePrivate& twin);

  const ManifestCheck checkManifest;
  mutable std::mutex mutex;
  long lastId = 0;
  std::weak_ptr<SystemBundle> system;
  BundleTable installed;
};

/// Keeps a framework running: all `Bundle` objects of the framework share it.
class FrameworkOwner {
 public:
  explicit FrameworkOwner(std::shared_ptr<SystemBundle> framework)
      : core(framework->core), system(std::move(framework)) {}

  /// Stops the framework, which breaks the reference cycle between it and its bundles.
  ~FrameworkOwner();
  FrameworkOwner(const FrameworkOwner&) = delete;
  FrameworkOwner& operator=(const FrameworkOwner&) = delete;

  const std::shared_ptr<FrameworkCore> core;

 private:
  const std::shared_ptr<SystemBundle> system;
};

}  // namespace cppmicroservices::detail

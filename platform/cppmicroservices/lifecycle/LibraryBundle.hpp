#pragma once

#include <exception>
#include <string>

#include "lifecycle/BundlePrivate.hpp"
#include "lifecycle/LibraryContexts.hpp"

namespace cppmicroservices {
struct BundleActivator;

namespace detail {

/// A bundle whose code is a shared library, loaded at its first start and never unloaded.
class LibraryBundle final : public BundlePrivate {
 public:
  /// Makes a bundle of a library that contains `libraryBundleCount` bundles.
  LibraryBundle(std::shared_ptr<FrameworkCore> core, long id, std::string location, AnyMap headers,
                std::size_t libraryBundleCount);

  void start() override;
  void stop() override;
  void uninstall() override;

  /// Also forgets the bundle, reports an exception of the activator, and then calls
  /// `SystemBundle::endOneStop`.
  void abandon() noexcept override;

  const std::size_t libraryBundleCount;

 private:
  using CreateActivator = BundleActivator* (*)();
  using DestroyActivator = void (*)(BundleActivator*);

  bool leaveFramework() noexcept;
  void requireRunningFramework() const;
  void activate();
  std::exception_ptr deactivate() noexcept;
  void finishStop() noexcept;
  void reportFailedStop(const char* occasion, const std::exception_ptr& cause) noexcept;

  void loadLibrary();
  void openLibrary();
  void* symbol(const std::string& prefix) const;
  void startActivator();
  void stopActivator();
  void destroyActivator();
  [[noreturn]] void throwActivatorFailed(const char* action, const std::exception_ptr& cause) const;

  void* library = nullptr;
  // Looked up at the start, so that a stop allocates nothing. Null if the library takes no context.
  BundleContextPrivate* contexts = nullptr;
  DestroyActivator destroy = nullptr;
  BundleActivator* activator = nullptr;
};

}  // namespace detail
}  // namespace cppmicroservices

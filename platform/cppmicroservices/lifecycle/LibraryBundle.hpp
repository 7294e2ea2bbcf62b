#pragma once

#include <exception>
#include <string>

#include "lifecycle/BundlePrivate.hpp"

namespace cppmicroservices {
struct BundleActivator;

namespace detail {

/// A bundle whose code is a shared library, loaded at its first start and never unloaded.
class LibraryBundle final : public BundlePrivate {
 public:
  using BundlePrivate::BundlePrivate;

  void start() override;
  void stop() override;
  void uninstall() override;

  /// Stops the bundle for good, since its framework stops. Throws the activator's exception after
  /// everything else was done.
  void abandon();

 private:
  void requireRunningFramework() const;
  void activate();
  std::exception_ptr deactivate();
  void finishStop();

  void loadLibrary();
  void setLibraryContext(BundleContextPrivate* context);
  void* symbol(const std::string& prefix) const;
  void startActivator();
  void stopActivator();
  void destroyActivator();

  void* library = nullptr;
  BundleActivator* activator = nullptr;
};

}  // namespace detail
}  // namespace cppmicroservices

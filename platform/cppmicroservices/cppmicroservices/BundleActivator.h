#pragma once

#ifndef US_BUNDLE_NAME
#error "US_BUNDLE_NAME must be defined as the symbolic name of the bundle"
#endif

#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/detail/BundleSymbols.h"

namespace cppmicroservices {

/// Code that a bundle runs when it starts and stops. The framework creates one object per start of
/// a bundle whose manifest has "bundle.activator" true, and destroys it after the stop.
struct BundleActivator {
  virtual ~BundleActivator() = default;

  /// Called when the bundle starts. If it throws, the bundle is stopped again.
  virtual void Start(BundleContext context) = 0;

  /// Called when the bundle stops, if `Start` returned.
  virtual void Stop(BundleContext context) = 0;
};

}  // namespace cppmicroservices

/// Makes `activator`, a class with a default constructor, the activator of the bundle.
#define CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(activator)                             \
  extern "C" US_ABI_EXPORT cppmicroservices::BundleActivator* US_CREATE_ACTIVATOR_FUNC( \
      US_BUNDLE_NAME)();                                                                \
  extern "C" US_ABI_EXPORT cppmicroservices::BundleActivator* US_CREATE_ACTIVATOR_FUNC( \
      US_BUNDLE_NAME)() {                                                               \
    return new activator();                                                             \
  }                                                                                     \
  extern "C" US_ABI_EXPORT void US_DESTROY_ACTIVATOR_FUNC(US_BUNDLE_NAME)(              \
      cppmicroservices::BundleActivator * object);                                      \
  extern "C" US_ABI_EXPORT void US_DESTROY_ACTIVATOR_FUNC(US_BUNDLE_NAME)(              \
      cppmicroservices::BundleActivator * object) {                                     \
    delete object;                                                                      \
  }

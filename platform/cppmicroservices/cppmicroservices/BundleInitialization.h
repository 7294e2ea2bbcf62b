#pragma once

#ifndef US_BUNDLE_NAME
#error "US_BUNDLE_NAME must be defined as the symbolic name of the bundle"
#endif

#include <atomic>

#include "cppmicroservices/FrameworkExport.h"
#include "cppmicroservices/detail/BundleSymbols.h"

namespace cppmicroservices {
class BundleContextPrivate;
}

/// Gives a library access to its bundle context. Use it once, outside of any namespace, in one
/// source file. The framework stores the context when the bundle starts and clears it afterwards.
#define CPPMICROSERVICES_INITIALIZE_BUNDLE                                                         \
  static std::atomic<cppmicroservices::BundleContextPrivate*> US_CTX_INS(US_BUNDLE_NAME){nullptr}; \
  extern "C" cppmicroservices::BundleContextPrivate* US_GET_CTX_FUNC(US_BUNDLE_NAME)();            \
  extern "C" cppmicroservices::BundleContextPrivate* US_GET_CTX_FUNC(US_BUNDLE_NAME)() {           \
    return US_CTX_INS(US_BUNDLE_NAME).load();                                                      \
  }                                                                                                \
  extern "C" US_ABI_EXPORT void US_SET_CTX_FUNC(US_BUNDLE_NAME)(                                   \
      cppmicroservices::BundleContextPrivate * handle);                                            \
  extern "C" US_ABI_EXPORT void US_SET_CTX_FUNC(US_BUNDLE_NAME)(                                   \
      cppmicroservices::BundleContextPrivate * handle) {                                           \
    US_CTX_INS(US_BUNDLE_NAME).exchange(handle);                                                   \
  }

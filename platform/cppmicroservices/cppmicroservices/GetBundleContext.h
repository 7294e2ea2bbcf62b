#pragma once

#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/BundleInitialization.h"

extern "C" cppmicroservices::BundleContextPrivate* US_GET_CTX_FUNC(US_BUNDLE_NAME)();

namespace cppmicroservices {

/// Returns the context of the bundle that the calling code belongs to, an invalid one unless the
/// bundle is starting, active or stopping. When several frameworks of the process have started the
/// bundle, it is the context of the last start. May be called in any thread, also while another one
/// uninstalls the bundle or stops its framework.
static inline BundleContext GetBundleContext() {
  BundleContextPrivate* const handle = US_GET_CTX_FUNC(US_BUNDLE_NAME)();
  return handle == nullptr ? BundleContext() : detail::MakeBundleContext(handle);
}

}  // namespace cppmicroservices

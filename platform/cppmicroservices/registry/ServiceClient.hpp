#pragma once

#include "cppmicroservices/Bundle.h"

namespace cppmicroservices::detail {

/// A bundle as the service layer sees it: it registers services, uses those of others and listens.
class ServiceClient {
 public:
  virtual ~ServiceClient() = default;

  /// Returns the public handle of the bundle.
  virtual Bundle bundle() = 0;

  /// Throws `IllegalStateException` when the bundle is at the end of its stop, where it must not
  /// register, get or listen to anything more.
  virtual void requireOpen() const = 0;
};

}  // namespace cppmicroservices::detail

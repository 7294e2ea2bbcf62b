#pragma once

#include <cstdint>

#include "cppmicroservices/Bundle.h"
#include "registry/ServiceUses.hpp"

namespace cppmicroservices::detail {

/// A bundle as the service layer sees it: it registers services, uses those of others and listens.
class ServiceClient {
 public:
  virtual ~ServiceClient() = default;

  /// Returns the public handle of the bundle.
  virtual Bundle bundle() = 0;

  /// Throws `IllegalStateException` unless the bundle is in its start `generation`, and not at the
  /// end of its stop, where it must not register, get or listen to anything more. A context has
  /// the generation of the start that it belongs to.
  virtual void requireOpen(std::uint64_t generation) const = 0;

  ServiceUses uses;
};

}  // namespace cppmicroservices::detail

#pragma once

#include "cppmicroservices/FrameworkExport.h"

namespace cppmicroservices {

class Framework;

/// Creates frameworks, which are independent of each other but for the context of a library; see
/// `GetBundleContext`.
class QUENLITH_CPPMICROSERVICES_EXPORT FrameworkFactory {
 public:
  /// Returns a new framework, not started.
  Framework NewFramework();
};

}  // namespace cppmicroservices

#pragma once

#include "cppmicroservices/FrameworkExport.h"

namespace cppmicroservices {

class Framework;

/// Creates frameworks, which are independent of each other.
class QUENLITH_CPPMICROSERVICES_EXPORT FrameworkFactory {
 public:
  /// Returns a new framework, not started.
  Framework NewFramework();
};

}  // namespace cppmicroservices

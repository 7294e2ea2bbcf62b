#pragma once

#include "cppmicroservices/FrameworkExport.h"

namespace cppmicroservices {

class Framework;

/// Makes frameworks, which know nothing of each other.
class QUENLITH_CPPMICROSERVICES_EXPORT FrameworkFactory {
 public:
  /// Returns a new framework that was not started.
  Framework NewFramework();
};

}  // namespace cppmicroservices

#pragma once

#include <memory>

#include "cppmicroservices/Framework.h"

namespace foundation::cppmicroservices {

std::shared_ptr<::cppmicroservices::Framework> getFramework();

}  // namespace foundation::cppmicroservices

#pragma once

#include <utility>

#include "cppmicroservices/FrameworkExport.h"
#include "cppmicroservices/ServiceReferenceBase.h"

namespace cppmicroservices::detail {

/// Says whether lookups find the service of `reference`.
///
/// It becomes false before any listener is told that the service is being unregistered. A caller
/// that asks for it under a lock which its own listener takes too, and stores the service under the
/// same lock, never keeps one that has gone: if this was true, the listener is called later.
QUENLITH_CPPMICROSERVICES_EXPORT bool isFindable(const ServiceReferenceBase& reference);

/// The ranking of a service and its negative id: the preferred service has the greatest.
using Preference = std::pair<int, long>;

/// Returns the current preference of the service of `reference`, which must refer to one. The order
/// of references changes while they are sorted: sort what this has returned for each.
QUENLITH_CPPMICROSERVICES_EXPORT Preference preferenceOf(const ServiceReferenceBase& reference);

}  // namespace cppmicroservices::detail

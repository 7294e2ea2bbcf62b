#pragma once

#include <utility>

#include "cppmicroservices/FrameworkExport.h"
#include "cppmicroservices/ServiceReferenceBase.h"

namespace cppmicroservices::detail {

/// Says whether lookups find the service of `reference`.
///
/// They stop to find it before the first listener is told that it is being unregistered. Who stores
/// a service under a lock that its listener takes too, and asks this after it has stored it, never
/// keeps one that is gone: the listener finds it, or this says that it is going.
QUENLITH_CPPMICROSERVICES_EXPORT bool isFindable(const ServiceReferenceBase& reference);

/// The ranking of a service and its negative id: the preferred service has the greatest.
using Preference = std::pair<int, long>;

/// Returns the current preference of the service of `reference`, which must refer to one. The order
/// of references changes while they are sorted: sort what this has returned for each.
QUENLITH_CPPMICROSERVICES_EXPORT Preference preferenceOf(const ServiceReferenceBase& reference);

}  // namespace cppmicroservices::detail

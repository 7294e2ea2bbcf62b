#include "registry/serviceCounts.hpp"

#include <map>
#include <mutex>

#include "cppmicroservices/ServiceInterface.h"
#include "properties/text.hpp"

namespace cppmicroservices::detail {

namespace {

// Never destroyed: code of any library may keep a reference to a count until the process ends.
struct Counts {
  std::mutex mutex;
  std::map<std::string, ServiceCount> byInterface;
};

Counts& allCounts() {
  static Counts& counts = *new Counts;
  return counts;
}

}  // namespace

ServiceCount& mutableServiceCount(const std::string& interfaceId) {
  Counts& counts = allCounts();
  const std::lock_guard lock(counts.mutex);
  return counts.byInterface[interfaceId];
}

const ServiceCount& serviceCount(const std::string& interfaceId) {
  requireInterfaceId(interfaceId);
  return mutableServiceCount(std::string(withoutGlobalScope(interfaceId)));
}

}  // namespace cppmicroservices::detail

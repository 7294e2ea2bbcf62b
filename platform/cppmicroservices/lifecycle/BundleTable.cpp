#include "lifecycle/BundleTable.hpp"

#include <iterator>

namespace cppmicroservices::detail {

namespace {

// Negative when `left` has the lesser name, or the lesser version of the same name.
int compareIdentities(const LibraryBundle& left, const LibraryBundle& right) {
  const int names = left.symbolicName.compare(right.symbolicName);
  return names != 0 ? names : left.version.Compare(right.version);
}

}  // namespace

bool BundleTable::LocationLess::operator()(const Entry& left, const Entry& right) const {
  const int locations = left->location.compare(right->location);
  return locations != 0 ? locations < 0 : left->id < right->id;
}
bool BundleTable::LocationLess::operator()(const Entry& left, const std::string& location) const {
  return left->location < location;
}

bool BundleTable::IdentityLess::operator()(const Entry& left, const Entry& right) const {
  return compareIdentities(*left, *right) < 0;
}
bool BundleTable::IdentityLess::operator()(const Entry& left, const LibraryBundle& right) const {
  return compareIdentities(*left, right) < 0;
}
bool BundleTable::IdentityLess::operator()(const LibraryBundle& left, const Entry& right) const {
  return compareIdentities(left, *right) < 0;
}

void BundleTable::add(const Entry& bundle) {
  byId.emplace(bundle->id, bundle);
  byLocation.insert(bundle);
  byIdentity.insert(bundle);
}

void BundleTable::takeAllOf(BundleTable& other) noexcept {
  byId.merge(other.byId);
  byLocation.merge(other.byLocation);
  byIdentity.merge(other.byIdentity);
}

void BundleTable::remove(const BundlePrivate& bundle) noexcept {
  const auto entry = byId.find(bundle.id);
  if (entry == byId.end()) return;
  byLocation.erase(entry->second);
  byIdentity.erase(entry->second);
  byId.erase(entry);
}

BundleTable::Entry BundleTable::find(long id) const {
  const auto entry = byId.find(id);
  return entry == byId.end() ? nullptr : entry->second;
}

BundleTable::Entry BundleTable::findLast(long id) const {
  const auto after = byId.upper_bound(id);
  return after == byId.begin() ? nullptr : std::prev(after)->second;
}

BundleTable::Entry BundleTable::findTwin(const LibraryBundle& bundle) const {
  const auto entry = byIdentity.find(bundle);
  return entry == byIdentity.end() ? nullptr : *entry;
}

std::vector<BundleTable::Entry> BundleTable::all() const {
  std::vector<Entry> bundles;
  for (const auto& [id, bundle] : byId) bundles.push_back(bundle);
  return bundles;
}

std::vector<BundleTable::Entry> BundleTable::at(const std::string& location) const {
  std::vector<Entry> bundles;
  auto place = byLocation.lower_bound(location);
  for (; place != byLocation.end() && (*place)->location == location; ++place) {
    bundles.push_back(*place);
  }
  return bundles;
}

}  // namespace cppmicroservices::detail

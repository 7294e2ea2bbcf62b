#include "lifecycle/FrameworkCore.hpp"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "cppmicroservices/Constants.h"

namespace cppmicroservices::detail {

std::shared_ptr<FrameworkOwner> FrameworkCore::make(ManifestCheck check) {
  const auto core = std::make_shared<FrameworkCore>(check);
  core->system = std::make_shared<SystemBundle>(core);
  auto owner = std::make_shared<FrameworkOwner>(core);
  core->owner = owner;
  return owner;
}

FrameworkOwner::~FrameworkOwner() {
  core->system->stop();
  core->system.reset();
}

std::vector<Bundle> FrameworkCore::install(BundlePrivate& installer, const std::string& location) {
  const std::string path = std::filesystem::absolute(location).string();
  std::vector<Bundle> bundles = bundlesAt(path);
  if (!bundles.empty()) return bundles;
  std::vector<AnyMap> manifests;
  for (const ManifestText& text : readManifestTexts(path)) {
    manifests.push_back(parseManifest(path, text));
    checkManifest(manifests.back(), path);
  }
  for (const auto& bundle : add(path, manifests)) {
    bundles.push_back(bundle->bundle());
    listeners.send(BundleEvent(BundleEvent::BUNDLE_INSTALLED, bundles.back(), installer.bundle()));
  }
  // None was added when another thread has installed the library meanwhile.
  return bundles.empty() ? bundlesAt(path) : bundles;
}

FrameworkCore::LibraryBundles FrameworkCore::add(const std::string& location,
                                                 const std::vector<AnyMap>& manifests) {
  LibraryBundles added;
  const std::lock_guard lock(mutex);
  // Under the lock, so that a framework that stops finds every bundle.
  if (!system->acceptsBundles()) throw std::logic_error("the framework stops: no bundle is added");
  if (isInstalled(location)) return added;
  auto longer = installed;
  for (const AnyMap& manifest : manifests) {
    const auto bundle =
        std::make_shared<LibraryBundle>(shared_from_this(), ++lastId, location, manifest);
    requireFreeName(longer, *bundle);
    longer.emplace(bundle->id, bundle);
    added.push_back(bundle);
  }
  installed = std::move(longer);
  return added;
}

bool FrameworkCore::isInstalled(const std::string& location) const {
  return std::any_of(installed.begin(), installed.end(),
                     [&location](const auto& entry) { return entry.second->location == location; });
}

void FrameworkCore::requireFreeName(const BundleTable& table, const BundlePrivate& added) {
  for (const auto& [id, bundle] : table) {
    if (bundle->symbolicName != added.symbolicName) continue;
    std::string fault = "the value of \"";
    fault.append(Constants::BUNDLE_SYMBOLICNAME).append("\", ").append(added.symbolicName);
    fault.append(", is that of ").append(bundle->location).append(" already");
    refuseBundle(added.location, fault, "rename one of the two bundles or uninstall the other");
  }
}

void FrameworkCore::forget(const BundlePrivate& bundle) {
  const std::lock_guard lock(mutex);
  installed.erase(bundle.id);
}

std::shared_ptr<BundlePrivate> FrameworkCore::find(long id) const {
  if (id == 0) return system;
  const std::lock_guard lock(mutex);
  const auto entry = installed.find(id);
  return entry == installed.end() ? nullptr : entry->second;
}

FrameworkCore::LibraryBundles FrameworkCore::libraryBundles() const {
  const std::lock_guard lock(mutex);
  LibraryBundles bundles;
  for (const auto& [id, bundle] : installed) bundles.push_back(bundle);
  return bundles;
}

std::vector<Bundle> FrameworkCore::bundles() const {
  std::vector<Bundle> result{system->bundle()};
  for (const auto& bundle : libraryBundles()) result.push_back(bundle->bundle());
  return result;
}

std::vector<Bundle> FrameworkCore::bundlesAt(const std::string& location) const {
  std::vector<Bundle> result;
  for (const auto& bundle : libraryBundles()) {
    if (bundle->location == location) result.push_back(bundle->bundle());
  }
  return result;
}

}  // namespace cppmicroservices::detail

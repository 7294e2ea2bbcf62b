#include "framework/FrameworkCore.hpp"

#include <filesystem>

#include "cppmicroservices/Constants.h"
#include "framework/bundleManifests.hpp"
#include "servicecomponent/ComponentDescription.hpp"

namespace cppmicroservices::detail {

std::shared_ptr<FrameworkOwner> FrameworkCore::make() {
  const auto core = std::make_shared<FrameworkCore>();
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
    checkComponents(manifests.back(), path);
  }
  bundles = add(path, manifests);
  for (const Bundle& bundle : bundles) {
    listeners.send(BundleEvent(BundleEvent::BUNDLE_INSTALLED, bundle, installer.bundle()));
  }
  return bundles;
}

std::vector<Bundle> FrameworkCore::add(const std::string& location,
                                       const std::vector<AnyMap>& manifests) {
  std::vector<Bundle> bundles;
  const std::lock_guard lock(mutex);
  for (const AnyMap& manifest : manifests) requireFreeName(location, manifest);
  for (const AnyMap& manifest : manifests) {
    const auto bundle =
        std::make_shared<LibraryBundle>(shared_from_this(), ++lastId, location, manifest);
    installed.emplace(bundle->id, bundle);
    bundles.push_back(bundle->bundle());
  }
  return bundles;
}

void FrameworkCore::requireFreeName(const std::string& location, const AnyMap& manifest) const {
  const auto& name = ref_any_cast<std::string>(manifest.at(Constants::BUNDLE_SYMBOLICNAME));
  for (const auto& [id, bundle] : installed) {
    if (bundle->symbolicName != name) continue;
    std::string fault = "the value of \"";
    fault.append(Constants::BUNDLE_SYMBOLICNAME).append("\", ").append(name);
    fault.append(", is that of ").append(bundle->location).append(" already");
    refuseBundle(location, fault, "rename one of the two bundles or uninstall the other");
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

std::vector<std::shared_ptr<LibraryBundle>> FrameworkCore::libraryBundles() const {
  const std::lock_guard lock(mutex);
  std::vector<std::shared_ptr<LibraryBundle>> bundles;
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

void FrameworkCore::reportError(BundlePrivate& source, const std::string& message,
                                std::exception_ptr cause) {
  listeners.send(FrameworkEvent(FrameworkEvent::FRAMEWORK_ERROR, source.bundle(), message, cause));
}

}  // namespace cppmicroservices::detail

#include "lifecycle/FrameworkCore.hpp"

#include <filesystem>
#include <stdexcept>
#include <utility>

#include "cppmicroservices/Constants.h"

namespace cppmicroservices::detail {

namespace {

std::vector<Bundle> handlesOf(const std::vector<BundleTable::Entry>& bundles) {
  std::vector<Bundle> handles;
  handles.reserve(bundles.size());
  for (const auto& bundle : bundles) handles.push_back(bundle->bundle());
  return handles;
}

}  // namespace

std::shared_ptr<FrameworkOwner> FrameworkCore::make(ManifestCheck check) {
  const auto core = std::make_shared<FrameworkCore>(check);
  auto system = std::make_shared<SystemBundle>(core);
  core->system = system;
  auto owner = std::make_shared<FrameworkOwner>(std::move(system));
  core->owner = owner;
  return owner;
}

FrameworkOwner::~FrameworkOwner() {
  // Not `stop`, which throws when a thread without a handle is stopping the framework for more than
  // 5 seconds: that thread ends the stop.
  system->abandon();
  core->listeners.clear();
}

std::shared_ptr<SystemBundle> FrameworkCore::systemBundle() const {
  auto found = findSystemBundle();
  if (!found) throwInvalidContext();
  return found;
}

std::vector<Bundle> FrameworkCore::install(BundlePrivate& installer, const std::string& location) {
  const std::string path = std::filesystem::absolute(location).string();
  if (isInstalledCompletely(path)) return bundlesAt(path);
  std::vector<AnyMap> manifests;
  for (const ManifestText& text : readManifestTexts(path)) {
    manifests.push_back(parseManifest(path, text));
    checkManifest(manifests.back(), path);
  }
  Installed result = add(path, manifests);
  for (const Bundle& bundle : result.added) {
    listeners.send(BundleEvent(BundleEvent::BUNDLE_INSTALLED, bundle, installer.bundle()));
  }
  // Not copied, which could fail after the bundles were installed.
  return std::move(result.all);
}

FrameworkCore::Installed FrameworkCore::add(const std::string& location,
                                            const std::vector<AnyMap>& manifests) {
  Installed result;
  const auto framework = systemBundle();
  const std::lock_guard lock(mutex);
  // Under the lock, so that a framework that stops finds every bundle.
  if (!framework->acceptsBundles()) {
    throw std::logic_error("the framework stops: no bundle is added");
  }
  BundleTable added;
  for (const AnyMap& manifest : manifests) {
    const auto bundle = std::make_shared<LibraryBundle>(shared_from_this(), lastId + 1, location,
                                                        manifest, manifests.size());
    const auto twin = installed.findTwin(*bundle);
    // Those of the library that were not uninstalled stay as they are.
    if (twin && twin->location == location) continue;
    if (twin) refuseTwin(*bundle, *twin);
    if (const auto brother = added.findTwin(*bundle)) refuseTwin(*bundle, *brother);
    added.add(bundle);
    result.added.push_back(bundle->bundle());
    ++lastId;
  }
  result.all = handlesOf(installed.at(location));
  // Their ids are higher.
  result.all.insert(result.all.end(), result.added.begin(), result.added.end());
  // Nothing can fail any more.
  installed.takeAllOf(added);
  return result;
}

bool FrameworkCore::isInstalledCompletely(const std::string& location) const {
  const std::lock_guard lock(mutex);
  const auto bundles = installed.at(location);
  return !bundles.empty() && bundles.size() == bundles.front()->libraryBundleCount;
}

void FrameworkCore::refuseTwin(const BundlePrivate& added, const BundlePrivate& twin) {
  std::string fault = "the values of \"";
  fault.append(Constants::BUNDLE_SYMBOLICNAME).append("\" and \"");
  fault.append(Constants::BUNDLE_VERSION).append("\", ").append(added.symbolicName).append(" and ");
  fault.append(added.version.ToString()).append(", are those of ");
  fault.append(twin.location).append(" already");
  refuseBundle(added.location, fault,
               "change the name or the version of one of the two bundles or uninstall the other");
}

void FrameworkCore::forget(const BundlePrivate& bundle) noexcept {
  const std::lock_guard lock(mutex);
  installed.remove(bundle);
}

std::shared_ptr<LibraryBundle> FrameworkCore::findLast(long id) const {
  const std::lock_guard lock(mutex);
  return installed.findLast(id);
}

std::shared_ptr<BundlePrivate> FrameworkCore::find(long id) const {
  if (id == 0) return systemBundle();
  const std::lock_guard lock(mutex);
  return installed.find(id);
}

std::vector<std::shared_ptr<LibraryBundle>> FrameworkCore::libraryBundles() const {
  const std::lock_guard lock(mutex);
  return installed.all();
}

std::vector<Bundle> FrameworkCore::bundles() const {
  std::vector<Bundle> result{systemBundle()->bundle()};
  for (const auto& bundle : libraryBundles()) result.push_back(bundle->bundle());
  return result;
}

std::vector<Bundle> FrameworkCore::bundlesAt(const std::string& location) const {
  const std::lock_guard lock(mutex);
  return handlesOf(installed.at(location));
}

}  // namespace cppmicroservices::detail

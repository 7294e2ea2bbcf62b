#include "lifecycle/LibraryContexts.hpp"

#include <map>

#include "lifecycle/BundlePrivate.hpp"

namespace cppmicroservices {

using detail::BundlePrivate;

BundleContextPrivate& BundleContextPrivate::of(Set set) {
  struct Libraries {
    std::mutex mutex;
    std::map<Set, BundleContextPrivate> contexts;
  };
  static Libraries& libraries = *new Libraries;
  const std::lock_guard lock(libraries.mutex);
  return libraries.contexts.try_emplace(set, set).first->second;
}

void BundleContextPrivate::give(const std::shared_ptr<BundlePrivate>& bundle) {
  const std::lock_guard lock(mutex);
  bundles.push_back(bundle);
  set(this);
}

void BundleContextPrivate::takeBack(const std::weak_ptr<BundlePrivate>& bundle) noexcept {
  const std::lock_guard lock(mutex);
  std::erase_if(bundles, [&bundle](const auto& given) {
    return !given.owner_before(bundle) && !bundle.owner_before(given);
  });
  if (bundles.empty()) set(nullptr);
}

BundleContext BundleContextPrivate::last() const {
  const std::lock_guard lock(mutex);
  for (auto given = bundles.rbegin(); given != bundles.rend(); ++given) {
    // Never the last reference: a bundle that stops is kept until it has taken its context back.
    const auto bundle = given->lock();
    if (bundle == nullptr) continue;
    // That of a bundle at the end of its stop is invalid already.
    if (auto context = bundle->context(bundle)) return context;
  }
  return {};
}

BundleContext detail::MakeBundleContext(BundleContextPrivate* handle) {
  return handle->last();
}

}  // namespace cppmicroservices

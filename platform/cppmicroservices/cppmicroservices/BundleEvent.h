#pragma once

#include <cstdint>

#include "cppmicroservices/Bundle.h"

namespace cppmicroservices {

/// Tells of a change of a bundle's state.
class QUENLITH_CPPMICROSERVICES_EXPORT BundleEvent {
 public:
  enum Type : std::uint32_t {
    BUNDLE_INSTALLED = 0x00000001,
    BUNDLE_STARTED = 0x00000002,
    BUNDLE_STOPPED = 0x00000004,
    BUNDLE_UNINSTALLED = 0x00000010,
    BUNDLE_RESOLVED = 0x00000020,
    BUNDLE_UNRESOLVED = 0x00000040,
    BUNDLE_STARTING = 0x00000080,
    BUNDLE_STOPPING = 0x00000100
  };

  /// Makes an invalid event.
  BundleEvent();
  BundleEvent(Type kind, const Bundle& changed);
  BundleEvent(Type kind, const Bundle& changed, const Bundle& cause);

  explicit operator bool() const;
  Type GetType() const;
  Bundle GetBundle() const;

  /// Returns the bundle that installed the other one; the same bundle for all other changes.
  Bundle GetOrigin() const;

  bool operator==(const BundleEvent&) const = default;

 private:
  Type type{};
  Bundle bundle;
  Bundle origin;
};

}  // namespace cppmicroservices

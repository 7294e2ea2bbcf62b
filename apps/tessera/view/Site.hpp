#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace tessera::view {

/// A version of the page that is shown.
struct Page {
  /// Grows with each version.
  std::uint64_t version = 0;
  std::string html;
};

/// What the server shows. Operations may be called by several threads at once.
class Site {
 public:
  virtual ~Site() = default;

  virtual std::shared_ptr<const Page> page() const = 0;

  /// Returns the version of the page once it is not `known`, or `known` after `patience`.
  virtual std::uint64_t awaitVersion(std::uint64_t known,
                                     std::chrono::milliseconds patience) const = 0;

  // Somebody has opened the page, or closed it.
  virtual void addReader() = 0;
  virtual void removeReader() noexcept = 0;
};

}  // namespace tessera::view

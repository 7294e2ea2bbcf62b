#pragma once

#include <cppmicroservices/Framework.h>
#include <cppmicroservices/ListenerToken.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "foundation/cppmicroservices/getFramework.hpp"

namespace quenlith::build::markup::services {

/// Knows that the running framework still has no service of one interface, where a lookup found
/// none: the framework tells it of every change, so that nobody need look again on every line.
///
/// Owns nothing of the framework. What the framework tells comes on any thread; the rest is not
/// thread-safe.
class AbsenceWatch {
 public:
  AbsenceWatch() = default;
  AbsenceWatch(const AbsenceWatch&) = delete;
  AbsenceWatch& operator=(const AbsenceWatch&) = delete;
  ~AbsenceWatch();

  /// Tells whether there was no service at the last `confirm` and nothing has changed since: it is
  /// the same framework, which has not stopped, and no service of the interface came.
  bool isConfirmed() const noexcept {
    return confirmed && !news->load(std::memory_order_acquire) &&
           changesSeen == foundation::cppmicroservices::frameworkChanges();
  }

  /// Listens for services of the interface anew; to be called before a lookup, so that nothing
  /// comes unseen between them. Returns the framework to look in, null when none runs. Throws what
  /// the framework throws; it then does not listen.
  std::shared_ptr<cppmicroservices::Framework> begin(const std::string& interfaceId);

  /// Says that the lookup since the last `begin`, which gave a framework, found no service.
  void confirm() noexcept { confirmed = true; }

  /// Stops listening.
  void end() noexcept;

 private:
  /// True after a change, and after the end of the listener, which the framework drops when it
  /// stops.
  using News = std::atomic<bool>;

  std::weak_ptr<cppmicroservices::Framework> watched;
  /// The changes of the running framework before the last lookup.
  std::uint64_t changesSeen = 0;
  /// Null while it does not listen.
  std::shared_ptr<News> news;
  cppmicroservices::ListenerToken token;
  bool confirmed = false;
};

}  // namespace quenlith::build::markup::services

#pragma once

#include <cppmicroservices/Framework.h>
#include <cppmicroservices/ListenerToken.h>

#include <atomic>
#include <memory>
#include <string>

namespace quenlith::build::markup::services {

/// Knows that a framework still has no service of one interface, where a lookup found none: the
/// framework tells it of every change, so that nobody need look again on every line.
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
  bool isConfirmed(const std::shared_ptr<cppmicroservices::Framework>& framework) const noexcept {
    return confirmed && isListening(framework);
  }

  /// Listens for services of the interface from now on, if it does not yet; to be called before a
  /// lookup, so that nothing comes unseen between them. Throws what the framework throws; it then
  /// does not listen.
  void begin(const std::shared_ptr<cppmicroservices::Framework>& framework,
             const std::string& interfaceId);

  /// Says that a lookup since the last `begin` found no service.
  void confirm() noexcept { confirmed = true; }

  /// Stops listening.
  void end() noexcept;

 private:
  /// True after a change, and after the end of the listener, which the framework drops when it
  /// stops.
  using News = std::atomic<bool>;

  bool isListening(const std::shared_ptr<cppmicroservices::Framework>& framework) const noexcept {
    return news != nullptr && !news->load(std::memory_order_acquire) &&
           !watched.owner_before(framework) && !framework.owner_before(watched);
  }

  std::weak_ptr<cppmicroservices::Framework> watched;
  /// Null while it does not listen.
  std::shared_ptr<News> news;
  cppmicroservices::ListenerToken token;
  bool confirmed = false;
};

}  // namespace quenlith::build::markup::services

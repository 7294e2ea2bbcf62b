#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "cppmicroservices/BundleEvent.h"
#include "cppmicroservices/FrameworkEvent.h"
#include "cppmicroservices/LDAPFilter.h"
#include "cppmicroservices/ListenerFunctors.h"
#include "cppmicroservices/ListenerToken.h"
#include "cppmicroservices/ServiceEvent.h"

namespace cppmicroservices::detail {

class BundlePrivate;

/// The listeners of a framework. They are called in the sending thread with no lock held; one
/// that was removed is not called any more, save by a thread that is already in it. What a
/// listener throws becomes an error that the framework listeners get; what those throw is lost.
class FrameworkListeners {
 public:
  /// Adds a listener for `owner`. Throws `IllegalStateException` when that bundle stops, and
  /// `std::invalid_argument` when `filter` cannot be parsed.
  ListenerToken add(BundlePrivate& owner, const ServiceListener& listener,
                    const std::string& filter);
  ListenerToken add(BundlePrivate& owner, const BundleListener& listener);
  ListenerToken add(BundlePrivate& owner, const FrameworkListener& listener);

  void remove(const ListenerToken& token);
  void removeAllOf(const BundlePrivate& owner);

  void send(const BundleEvent& event);
  void send(const FrameworkEvent& event);

  /// Sends to the listeners whose filter matches the properties of the service. After a change
  /// of properties, `before` are those it had.
  void send(const ServiceEvent& event, const AnyMap* before = nullptr);

 private:
  template <class Function>
  struct Listener {
    ListenerTokenId id;
    std::shared_ptr<BundlePrivate> owner;
    Function function;
    LDAPFilter filter;
    mutable std::atomic<bool> removed = false;
  };

  template <class Function>
  using List = std::vector<std::shared_ptr<const Listener<Function>>>;

  // Replaced as a whole at each change, so that a sender walks over a list that stays as it is.
  template <class Function>
  using SharedList = std::shared_ptr<const List<Function>>;

  template <class Function>
  ListenerToken addTo(SharedList<Function>& list, BundlePrivate& owner, const Function& function,
                      const LDAPFilter& filter);
  template <class Function, class Condition>
  void removeFrom(SharedList<Function>& list, const Condition& condition);
  template <class Condition>
  void removeIf(const Condition& condition);
  template <class Function>
  SharedList<Function> current(const SharedList<Function>& list) const;
  template <class Function, class Event>
  void call(const Listener<Function>& listener, const Event& event);
  void reportThrown(BundlePrivate& owner);

  mutable std::mutex mutex;
  ListenerTokenId lastId = 0;
  SharedList<ServiceListener> serviceListeners = std::make_shared<List<ServiceListener>>();
  SharedList<BundleListener> bundleListeners = std::make_shared<List<BundleListener>>();
  SharedList<FrameworkListener> frameworkListeners = std::make_shared<List<FrameworkListener>>();
};

}  // namespace cppmicroservices::detail

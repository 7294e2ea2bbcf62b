#pragma once

#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "cppmicroservices/BundleEvent.h"
#include "cppmicroservices/FrameworkEvent.h"
#include "cppmicroservices/LDAPFilter.h"
#include "cppmicroservices/ListenerFunctors.h"
#include "cppmicroservices/ListenerToken.h"
#include "cppmicroservices/ServiceEvent.h"

namespace cppmicroservices::detail {

class ServiceClient;

/// The listeners of a framework. They are called in the sending thread with no lock held. An event
/// that is sent after a listener was removed does not reach it. A thread that is about to call it
/// at that time still does: a removal cannot wait for a listener that may wait for it. An exception
/// of a listener becomes an error event for the framework listeners; exceptions of framework
/// listeners are dropped.
class FrameworkListeners {
 public:
  using Owner = std::shared_ptr<ServiceClient>;

  /// Adds a listener of `owner` in its start `generation`. Throws `IllegalStateException` when that
  /// start ends or has ended, and `std::invalid_argument` when `filter` cannot be parsed.
  ListenerToken add(const Owner& owner, std::uint64_t generation, const ServiceListener& listener,
                    const std::string& filter);
  ListenerToken add(const Owner& owner, std::uint64_t generation, const BundleListener& listener);
  ListenerToken add(const Owner& owner, std::uint64_t generation,
                    const FrameworkListener& listener);

  void remove(const ListenerToken& token) noexcept;

  /// Remove the first listener of `owner` that `equal` says is `function`. When `equal` is null,
  /// function pointers are compared by value and other functions by type.
  void remove(const ServiceClient& owner, const ServiceListener& function,
              bool (*equal)(const ServiceListener&, const ServiceListener&)) noexcept;
  void remove(const ServiceClient& owner, const BundleListener& function,
              bool (*equal)(const BundleListener&, const BundleListener&)) noexcept;
  void remove(const ServiceClient& owner, const FrameworkListener& function,
              bool (*equal)(const FrameworkListener&, const FrameworkListener&)) noexcept;

  void removeAllOf(const ServiceClient& owner) noexcept;

  void clear() noexcept;

  void send(const BundleEvent& event) noexcept;
  void send(const FrameworkEvent& event) noexcept;

  /// Sends to the listeners whose filter matches the properties of the service. After a change
  /// of properties, `before` are the previous ones. Does not tell of a registration or a change
  /// when the service has begun to go: the listener may have been told of that already.
  void send(const ServiceEvent& event, const AnyMap* before = nullptr) noexcept;

  /// Sends an error of `source` to the framework listeners. The report is lost when memory runs
  /// out.
  void reportError(ServiceClient& source, std::string_view message,
                   const std::exception_ptr& cause) noexcept;

 private:
  template <class Function>
  struct Listener {
    ListenerTokenId id;
    Owner owner;
    Function function;
    LDAPFilter filter;
  };

  // In the order in which they were added. A sender looks up one after the other, so that others
  // may change the list meanwhile and nothing is copied.
  template <class Function>
  using List = std::map<ListenerTokenId, std::shared_ptr<const Listener<Function>>>;

  using IdsByOwner = std::set<std::pair<const ServiceClient*, ListenerTokenId>>;

  template <class Function>
  ListenerToken addTo(List<Function>& list, const Owner& owner, std::uint64_t generation,
                      const Function& function, const LDAPFilter& filter);
  template <class Function, class Equal>
  void removeFirst(const List<Function>& list, const ServiceClient& owner, const Function& function,
                   Equal equal) noexcept;
  void remove(ListenerTokenId id) noexcept;
  ListenerTokenId firstIdOf(const ServiceClient& owner) const noexcept;

  // Calls `action` for each listener that is in `list` now and not removed before its turn, until
  // it returns false.
  template <class Function, class Action>
  void forEach(const List<Function>& list, const Action& action) const noexcept;
  template <class Function>
  ListenerTokenId lastIdIn(const List<Function>& list) const noexcept;
  template <class Function>
  std::shared_ptr<const Listener<Function>> findAfter(const List<Function>& list,
                                                      ListenerTokenId id) const noexcept;
  template <class Function, class Event>
  void call(const Listener<Function>& listener, const Event& event) noexcept;
  template <class Function, class Event>
  void callAll(const List<Function>& list, const Event& event) noexcept;
  void reportThrown(ServiceClient& owner) noexcept;

  mutable std::mutex mutex;
  List<ServiceListener> serviceListeners;
  List<BundleListener> bundleListeners;
  List<FrameworkListener> frameworkListeners;
  IdsByOwner idsByOwner;
};

}  // namespace cppmicroservices::detail

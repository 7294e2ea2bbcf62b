#include "registry/FrameworkListeners.hpp"

#include <atomic>
#include <functional>
#include <new>
#include <tuple>
#include <type_traits>
#include <utility>

#include "properties/text.hpp"
#include "registry/ServiceClient.hpp"
#include "registry/ServiceRecord.hpp"

namespace cppmicroservices::detail {

namespace {

// Shared by all frameworks, so that none knows the token of another one.
std::atomic<ListenerTokenId> lastTokenId = 0;

// Says whether a listener with `filter` is told. Without the memory to find out it is: it can look
// for itself, but never learns of an event that it was not sent.
bool matches(const LDAPFilter& filter, const AnyMap& properties) noexcept {
  try {
    return !filter || filter.Match(properties);
  } catch (const std::bad_alloc&) {
    return true;
  }
}

// Says whether both are the same function pointer, or function objects of the same type.
template <class Event>
bool sameFunction(const std::function<void(const Event&)>& left,
                  const std::function<void(const Event&)>& right) {
  if (left.target_type() != right.target_type()) return false;
  using Pointer = void (*)(const Event&);
  const Pointer* const pointer = left.template target<Pointer>();
  return pointer == nullptr || *pointer == *right.template target<Pointer>();
}

}  // namespace

template <class Function>
ListenerToken FrameworkListeners::addTo(List<Function>& list, const Owner& owner,
                                        std::uint64_t generation, const Function& function,
                                        const LDAPFilter& filter) {
  // Made before the lock, and destroyed after it when it is not added: copying and destroying a
  // listener may call anything.
  const ListenerTokenId id = ++lastTokenId;
  List<Function> added;
  added.emplace(id, std::make_shared<const Listener<Function>>(
                        Listener<Function>{id, owner, function, filter}));
  IdsByOwner addedId{{owner.get(), id}};
  const std::lock_guard lock(mutex);
  // Under the lock, so that a bundle that stops finds every listener it has added.
  owner->requireOpen(generation);
  // Nothing can fail any more.
  list.merge(added);
  idsByOwner.merge(addedId);
  return ListenerToken(id);
}

void FrameworkListeners::remove(ListenerTokenId id) noexcept {
  // Keeps the listener until the lock is released: its destructor may call anything.
  std::tuple<List<ServiceListener>::node_type, List<BundleListener>::node_type,
             List<FrameworkListener>::node_type>
      removed;
  const std::lock_guard lock(mutex);
  const auto extract = [&](auto& list, auto& node) {
    node = list.extract(id);
    if (node) idsByOwner.erase({node.mapped()->owner.get(), id});
  };
  extract(serviceListeners, std::get<0>(removed));
  extract(bundleListeners, std::get<1>(removed));
  extract(frameworkListeners, std::get<2>(removed));
}

ListenerTokenId FrameworkListeners::firstIdOf(const ServiceClient& owner) const noexcept {
  const std::lock_guard lock(mutex);
  const auto first = idsByOwner.lower_bound({&owner, 0});
  return first == idsByOwner.end() || first->first != &owner ? 0 : first->second;
}

template <class Function>
ListenerTokenId FrameworkListeners::lastIdIn(const List<Function>& list) const noexcept {
  const std::lock_guard lock(mutex);
  return list.empty() ? 0 : list.rbegin()->first;
}

template <class Function>
std::shared_ptr<const FrameworkListeners::Listener<Function>> FrameworkListeners::findAfter(
    const List<Function>& list, ListenerTokenId id) const noexcept {
  const std::lock_guard lock(mutex);
  const auto next = list.upper_bound(id);
  return next == list.end() ? nullptr : next->second;
}

template <class Function, class Action>
void FrameworkListeners::forEach(const List<Function>& list, const Action& action) const noexcept {
  const ListenerTokenId last = lastIdIn(list);
  auto listener = findAfter(list, 0);
  while (listener && listener->id <= last && action(*listener)) {
    listener = findAfter(list, listener->id);
  }
}

template <class Function, class Event>
void FrameworkListeners::call(const Listener<Function>& listener, const Event& event) noexcept {
  try {
    listener.function(event);
  } catch (...) {
    if constexpr (!std::is_same_v<Event, FrameworkEvent>) reportThrown(*listener.owner);
  }
}

template <class Function, class Event>
void FrameworkListeners::callAll(const List<Function>& list, const Event& event) noexcept {
  forEach(list, [&](const auto& listener) {
    call(listener, event);
    return true;
  });
}

ListenerToken FrameworkListeners::add(const Owner& owner, std::uint64_t generation,
                                      const ServiceListener& listener, const std::string& filter) {
  return addTo(serviceListeners, owner, generation, listener,
               filter.empty() ? LDAPFilter() : LDAPFilter(filter));
}

ListenerToken FrameworkListeners::add(const Owner& owner, std::uint64_t generation,
                                      const BundleListener& listener) {
  return addTo(bundleListeners, owner, generation, listener, LDAPFilter());
}

ListenerToken FrameworkListeners::add(const Owner& owner, std::uint64_t generation,
                                      const FrameworkListener& listener) {
  return addTo(frameworkListeners, owner, generation, listener, LDAPFilter());
}

void FrameworkListeners::remove(const ListenerToken& token) noexcept {
  if (token) remove(token.id);
}

template <class Function, class Equal>
void FrameworkListeners::removeFirst(const List<Function>& list, const ServiceClient& owner,
                                     const Function& function, Equal equal) noexcept {
  ListenerTokenId found = 0;
  forEach(list, [&](const auto& listener) {
    if (listener.owner.get() != &owner) return true;
    const bool isSame = equal == nullptr ? sameFunction(listener.function, function)
                                         : equal(listener.function, function);
    if (isSame) found = listener.id;
    return !isSame;
  });
  if (found != 0) remove(found);
}

void FrameworkListeners::remove(const ServiceClient& owner, const ServiceListener& function,
                                bool (*equal)(const ServiceListener&,
                                              const ServiceListener&)) noexcept {
  removeFirst(serviceListeners, owner, function, equal);
}

void FrameworkListeners::remove(const ServiceClient& owner, const BundleListener& function,
                                bool (*equal)(const BundleListener&,
                                              const BundleListener&)) noexcept {
  removeFirst(bundleListeners, owner, function, equal);
}

void FrameworkListeners::remove(const ServiceClient& owner, const FrameworkListener& function,
                                bool (*equal)(const FrameworkListener&,
                                              const FrameworkListener&)) noexcept {
  removeFirst(frameworkListeners, owner, function, equal);
}

void FrameworkListeners::removeAllOf(const ServiceClient& owner) noexcept {
  while (const ListenerTokenId id = firstIdOf(owner)) remove(id);
}

void FrameworkListeners::clear() noexcept {
  std::tuple<List<ServiceListener>, List<BundleListener>, List<FrameworkListener>> removed;
  const std::lock_guard lock(mutex);
  std::get<0>(removed).swap(serviceListeners);
  std::get<1>(removed).swap(bundleListeners);
  std::get<2>(removed).swap(frameworkListeners);
  idsByOwner.clear();
}

void FrameworkListeners::send(const BundleEvent& event) noexcept {
  callAll(bundleListeners, event);
}

void FrameworkListeners::send(const FrameworkEvent& event) noexcept {
  callAll(frameworkListeners, event);
}

void FrameworkListeners::send(const ServiceEvent& event, const AnyMap* before) noexcept {
  const auto record = ServiceRecord::of(event.GetServiceReference());
  const auto properties = record->properties();
  const ServiceEvent endMatch(ServiceEvent::SERVICE_MODIFIED_ENDMATCH, event.GetServiceReference());
  const bool tellsOfTheEnd = event.GetType() == ServiceEvent::SERVICE_UNREGISTERING;
  forEach(serviceListeners, [&](const auto& listener) {
    if (matches(listener.filter, *properties)) {
      if (tellsOfTheEnd || record->isFindable()) call(listener, event);
    } else if (before != nullptr && matches(listener.filter, *before)) {
      call(listener, endMatch);
    }
    return true;
  });
}

void FrameworkListeners::reportError(ServiceClient& source, std::string_view message,
                                     const std::exception_ptr& cause) noexcept {
  try {
    send(FrameworkEvent(FrameworkEvent::FRAMEWORK_ERROR, source.bundle(), std::string(message),
                        cause));
  } catch (const std::bad_alloc&) {
    // There is no memory for the event.
  }
}

void FrameworkListeners::reportThrown(ServiceClient& owner) noexcept {
  try {
    const std::string message = "a listener of " + owner.bundle().GetSymbolicName() +
                                " threw an exception: " + currentExceptionText();
    reportError(owner, message, std::current_exception());
  } catch (const std::bad_alloc&) {
    // There is no memory for the message.
  }
}

}  // namespace cppmicroservices::detail

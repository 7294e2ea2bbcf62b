#include "registry/FrameworkListeners.hpp"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
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
ListenerToken FrameworkListeners::addTo(SharedList<Function>& list, const Owner& owner,
                                        std::uint64_t generation, const Function& function,
                                        const LDAPFilter& filter) {
  // Made before the lock and destroyed after it: copying and destroying a listener may call
  // anything.
  const auto listener = std::make_shared<Listener<Function>>();
  listener->id = ++lastTokenId;
  listener->owner = owner;
  listener->function = function;
  listener->filter = filter;
  SharedList<Function> before;
  const std::lock_guard lock(mutex);
  // Under the lock, so that a bundle that stops finds every listener it has added.
  owner->requireOpen(generation);
  auto longer = withoutRemoved<Function>(list, 1);
  longer->push_back(listener);
  before = std::exchange(list, std::move(longer));
  return ListenerToken(listener->id);
}

template <class Function>
std::shared_ptr<FrameworkListeners::List<Function>> FrameworkListeners::withoutRemoved(
    const SharedList<Function>& list, std::size_t freePlaces) {
  auto copy = std::make_shared<List<Function>>();
  copy->reserve((list ? list->size() : 0) + freePlaces);
  if (!list) return copy;
  std::copy_if(list->begin(), list->end(), std::back_inserter(*copy),
               [](const auto& listener) { return !listener->removed; });
  return copy;
}

template <class Function, class Condition>
void FrameworkListeners::removeFrom(SharedList<Function>& list,
                                    const Condition& condition) noexcept {
  if (!list || std::none_of(list->begin(), list->end(), condition)) return;
  bool isEmpty = true;
  for (const auto& listener : *list) {
    if (condition(listener)) listener->removed = true;
    isEmpty = isEmpty && listener->removed;
  }
  try {
    list = isEmpty ? nullptr : withoutRemoved<Function>(list, 0);
  } catch (const std::bad_alloc&) {
    // The listeners stay in the list until the next change, but they are not called.
  }
}

template <class Condition>
void FrameworkListeners::removeIf(const Condition& condition) noexcept {
  // Keeps the functions until the lock is released: their destructors may call anything.
  std::tuple<SharedList<ServiceListener>, SharedList<BundleListener>, SharedList<FrameworkListener>>
      before;
  const std::lock_guard lock(mutex);
  before = std::tie(serviceListeners, bundleListeners, frameworkListeners);
  removeFrom(serviceListeners, condition);
  removeFrom(bundleListeners, condition);
  removeFrom(frameworkListeners, condition);
}

template <class Function>
FrameworkListeners::SharedList<Function> FrameworkListeners::current(
    const SharedList<Function>& list) const {
  const std::lock_guard lock(mutex);
  return list;
}

template <class Function, class Event>
void FrameworkListeners::call(const Listener<Function>& listener, const Event& event) noexcept {
  if (listener.removed) return;
  try {
    listener.function(event);
  } catch (...) {
    if constexpr (!std::is_same_v<Event, FrameworkEvent>) reportThrown(*listener.owner);
  }
}

template <class Function, class Event>
void FrameworkListeners::callAll(const SharedList<Function>& list, const Event& event) noexcept {
  if (!list) return;
  for (const auto& listener : *list) call(*listener, event);
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
  removeIf([&token](const auto& listener) { return listener->id == token.id; });
}

template <class Function, class Equal>
void FrameworkListeners::removeFirst(const SharedList<Function>& list, const ServiceClient& owner,
                                     const Function& function, Equal equal) noexcept {
  const SharedList<Function> listeners = current(list);
  if (!listeners) return;
  for (const auto& listener : *listeners) {
    if (listener->owner.get() != &owner || listener->removed) continue;
    const bool isSame = equal == nullptr ? sameFunction(listener->function, function)
                                         : equal(listener->function, function);
    if (!isSame) continue;
    removeIf([&listener](const auto& other) { return other->id == listener->id; });
    return;
  }
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
  removeIf([&owner](const auto& listener) { return listener->owner.get() == &owner; });
}

void FrameworkListeners::clear() noexcept {
  removeIf([](const auto& /*listener*/) { return true; });
}

void FrameworkListeners::send(const BundleEvent& event) noexcept {
  callAll(current(bundleListeners), event);
}

void FrameworkListeners::send(const FrameworkEvent& event) noexcept {
  callAll(current(frameworkListeners), event);
}

void FrameworkListeners::send(const ServiceEvent& event, const AnyMap* before) noexcept {
  const auto listeners = current(serviceListeners);
  if (!listeners) return;
  const auto record = ServiceRecord::of(event.GetServiceReference());
  const auto properties = record->properties();
  const ServiceEvent endMatch(ServiceEvent::SERVICE_MODIFIED_ENDMATCH, event.GetServiceReference());
  const bool tellsOfTheEnd = event.GetType() == ServiceEvent::SERVICE_UNREGISTERING;
  for (const auto& listener : *listeners) {
    if (matches(listener->filter, *properties)) {
      if (tellsOfTheEnd || !record->isGoing()) call(*listener, event);
    } else if (before != nullptr && matches(listener->filter, *before)) {
      call(*listener, endMatch);
    }
  }
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

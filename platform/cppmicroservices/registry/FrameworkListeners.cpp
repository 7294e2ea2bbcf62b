#include "registry/FrameworkListeners.hpp"

#include <algorithm>
#include <new>
#include <tuple>
#include <type_traits>
#include <utility>

#include "properties/text.hpp"
#include "registry/ServiceClient.hpp"
#include "registry/ServiceRecord.hpp"

namespace cppmicroservices::detail {

namespace {

// Says whether a listener with `filter` is told. Without the memory to find out it is: it can look
// for itself, but never learns of an event that it was not sent.
bool matches(const LDAPFilter& filter, const AnyMap& properties) noexcept {
  try {
    return !filter || filter.Match(properties);
  } catch (const std::bad_alloc&) {
    return true;
  }
}

}  // namespace

template <class Function>
ListenerToken FrameworkListeners::addTo(SharedList<Function>& list, const Owner& owner,
                                        const Function& function, const LDAPFilter& filter) {
  const std::lock_guard lock(mutex);
  // Under the lock, so that a bundle that stops finds every listener it has added.
  owner->requireOpen();
  auto longer = std::make_shared<List<Function>>(*list);
  auto listener = std::make_shared<Listener<Function>>();
  listener->id = ++lastId;
  listener->owner = owner;
  listener->function = function;
  listener->filter = filter;
  longer->push_back(std::move(listener));
  list = std::move(longer);
  return ListenerToken(lastId);
}

template <class Function, class Condition>
void FrameworkListeners::removeFrom(SharedList<Function>& list, const Condition& condition) {
  if (std::none_of(list->begin(), list->end(), condition)) return;
  auto shorter = std::make_shared<List<Function>>();
  for (const auto& listener : *list) {
    if (condition(listener)) {
      listener->removed = true;
    } else {
      shorter->push_back(listener);
    }
  }
  list = std::move(shorter);
}

template <class Condition>
void FrameworkListeners::removeIf(const Condition& condition) {
  // Keeps the functions until the lock is released: their destructors may call anything.
  const auto before =
      std::tuple(current(serviceListeners), current(bundleListeners), current(frameworkListeners));
  const std::lock_guard lock(mutex);
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

ListenerToken FrameworkListeners::add(const Owner& owner, const ServiceListener& listener,
                                      const std::string& filter) {
  return addTo(serviceListeners, owner, listener,
               filter.empty() ? LDAPFilter() : LDAPFilter(filter));
}

ListenerToken FrameworkListeners::add(const Owner& owner, const BundleListener& listener) {
  return addTo(bundleListeners, owner, listener, LDAPFilter());
}

ListenerToken FrameworkListeners::add(const Owner& owner, const FrameworkListener& listener) {
  return addTo(frameworkListeners, owner, listener, LDAPFilter());
}

void FrameworkListeners::remove(const ListenerToken& token) {
  removeIf([&token](const auto& listener) { return listener->id == token.id; });
}

void FrameworkListeners::removeAllOf(const ServiceClient& owner) {
  removeIf([&owner](const auto& listener) { return listener->owner.get() == &owner; });
}

void FrameworkListeners::send(const BundleEvent& event) noexcept {
  const auto listeners = current(bundleListeners);
  for (const auto& listener : *listeners) call(*listener, event);
}

void FrameworkListeners::send(const FrameworkEvent& event) noexcept {
  const auto listeners = current(frameworkListeners);
  for (const auto& listener : *listeners) call(*listener, event);
}

void FrameworkListeners::send(const ServiceEvent& event, const AnyMap* before) noexcept {
  const auto listeners = current(serviceListeners);
  if (listeners->empty()) return;
  const auto properties = ServiceRecord::of(event.GetServiceReference())->properties();
  const ServiceEvent endMatch(ServiceEvent::SERVICE_MODIFIED_ENDMATCH, event.GetServiceReference());
  for (const auto& listener : *listeners) {
    if (matches(listener->filter, *properties)) {
      call(*listener, event);
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

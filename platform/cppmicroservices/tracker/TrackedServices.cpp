#include "cppmicroservices/detail/TrackedServices.h"

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "cppmicroservices/Constants.h"
#include "cppmicroservices/ServiceEvent.h"
#include "cppmicroservices/detail/ServiceState.h"

namespace cppmicroservices::detail {

namespace {

// How often a waiting thread looks whether its context is still valid, of which nothing tells it.
constexpr std::chrono::milliseconds kContextCheckInterval{50};

// Returns a value of a filter that matches `text` only: the identifier of a template may contain
// special characters.
std::string escaped(const std::string& text) {
  std::string value;
  for (const char character : text) {
    if (std::string_view(R"(\*())").find(character) != std::string_view::npos) value += '\\';
    value += character;
  }
  return value;
}

std::string filterOf(const TrackedServices::Criteria& criteria) {
  if (criteria.interfaceId.empty()) return criteria.filter;
  const bool hasScope = criteria.interfaceId.starts_with("::");
  const std::string interfaceId = criteria.interfaceId.substr(hasScope ? 2 : 0);
  return "(" + Constants::OBJECTCLASS + "=" + escaped(interfaceId) + ")";
}

// A callback that the current thread is in. Each refers to the one around it.
struct Call {
  const void* tracker;
  const void* session;
  const Call* outer;
};

thread_local const Call* innermostCall = nullptr;

template <class Condition>
int countCalls(const Condition& condition) {
  int count = 0;
  for (const Call* call = innermostCall; call != nullptr; call = call->outer) {
    if (condition(*call)) ++count;
  }
  return count;
}

}  // namespace

/// What is tracked between an `open` and the `close` after it.
class TrackedServices::Session {
 public:
  Session(const void* tracker, const Callbacks& callbacks)
      : tracker(tracker), callbacks(callbacks) {}

  void handle(const ServiceEvent& event) {
    const bool isGone = event.GetType() == ServiceEvent::SERVICE_UNREGISTERING ||
                        event.GetType() == ServiceEvent::SERVICE_MODIFIED_ENDMATCH;
    if (isGone) {
      untrack(event.GetServiceReference());
    } else {
      std::unique_lock lock(mutex);
      gone.erase(event.GetServiceReference());
      track(lock, event.GetServiceReference(), event.GetType() == ServiceEvent::SERVICE_MODIFIED);
    }
  }

  // Tracks the services that a lookup has found after the session began to get events.
  void trackFound(const std::vector<ServiceReferenceU>& references) {
    for (const ServiceReferenceU& reference : references) {
      std::unique_lock lock(mutex);
      if (gone.count(reference) == 0) track(lock, reference, false);
    }
    const std::lock_guard lock(mutex);
    isOpening = false;
    gone.clear();
  }

  void untrack(const ServiceReferenceU& reference) {
    std::unique_lock lock(mutex);
    if (isOpening) gone.insert(reference);
    // The thread that adds it removes it.
    if (adding.erase(reference) > 0) return;
    const auto entry = tracked.find(reference);
    if (entry == tracked.end()) return;
    const auto [removed, object] = *entry;
    tracked.erase(entry);
    ++changes;
    call(lock, [&, removed = removed, object = object] { callbacks.removed(removed, object); });
  }

  // Removes all services and waits for the callbacks in other threads. Returns the first exception
  // of a callback.
  std::exception_ptr close() noexcept {
    std::unique_lock lock(mutex);
    isClosed = true;
    isOpening = false;
    adding.clear();
    changed.notify_all();
    std::exception_ptr thrown;
    while (!tracked.empty()) {
      const ServiceReferenceU reference = tracked.begin()->first;
      lock.unlock();
      try {
        untrack(reference);
      } catch (...) {
        if (!thrown) thrown = std::current_exception();
      }
      lock.lock();
    }
    const int own = countCalls([this](const Call& call) { return call.session == this; });
    changed.wait(lock, [&] { return calls == own; });
    return thrown;
  }

  // Returns whether a service is tracked or the session is closed, false when the time was up.
  bool waitUntil(std::chrono::steady_clock::time_point end) {
    std::unique_lock lock(mutex);
    return changed.wait_until(lock, end, [this] { return isClosed || !tracked.empty(); });
  }

  mutable std::mutex mutex;
  std::unordered_map<ServiceReferenceU, Object> tracked;
  int changes = 0;
  bool isClosed = false;

 private:
  void track(std::unique_lock<std::mutex>& lock, const ServiceReferenceU& reference,
             bool isModified) {
    if (isClosed) return;
    if (const auto entry = tracked.find(reference); entry != tracked.end()) {
      if (!isModified) return;
      ++changes;
      const Object object = entry->second;
      call(lock, [&] { callbacks.modified(reference, object); });
    } else if (isFindable(reference) && adding.insert(reference).second) {
      // One that is not findable has gone, and `untrack` may have been called before. It is called
      // after this for one that goes later.
      add(lock, reference);
    }
  }

  void add(std::unique_lock<std::mutex>& lock, const ServiceReferenceU& reference) {
    Object object;
    try {
      call(lock, [&] { object = callbacks.adding(reference); });
      if (adding.count(reference) > 0 && object) tracked.emplace(reference, object);
    } catch (...) {
      adding.erase(reference);
      throw;
    }
    const bool isWanted = adding.erase(reference) > 0;
    if (!object) return;
    if (isWanted) {
      ++changes;
      changed.notify_all();
    } else {
      // It was removed, or the tracker was closed, in the meantime.
      call(lock, [&] { callbacks.removed(reference, object); });
    }
  }

  // Calls `function` without the lock. Allocates nothing, so that no callback is left out.
  template <class Function>
  void call(std::unique_lock<std::mutex>& lock, const Function& function) {
    const Call made{tracker, this, innermostCall};
    innermostCall = &made;
    ++calls;
    lock.unlock();
    try {
      function();
    } catch (...) {
      lock.lock();
      endCall(made);
      throw;
    }
    lock.lock();
    endCall(made);
  }

  void endCall(const Call& made) {
    innermostCall = made.outer;
    --calls;
    changed.notify_all();
  }

  const void* const tracker;
  const Callbacks callbacks;
  std::condition_variable changed;
  // The services that have gone, and not come again, since before the lookup of `trackFound`.
  std::unordered_set<ServiceReferenceU> gone;
  bool isOpening = true;
  // Those for which a thread is in `Callbacks::adding`.
  std::unordered_set<ServiceReferenceU> adding;
  // How many callbacks all threads are in.
  int calls = 0;
};

struct TrackedServices::State {
  mutable std::mutex mutex;
  std::shared_ptr<Session> session;
  ListenerToken listener;
  // How many sessions are being closed.
  int closing = 0;
  std::condition_variable closed;
};

TrackedServices::TrackedServices(const BundleContext& context, Criteria criteria,
                                 Callbacks callbacks)
    : context(context),
      criteria(std::move(criteria)),
      callbacks(std::move(callbacks)),
      state(std::make_unique<State>()) {}

TrackedServices::~TrackedServices() = default;

TrackedServices::Criteria TrackedServices::only(const ServiceReferenceBase& reference) {
  return {"", "(" + Constants::SERVICE_ID + "=" +
                  reference.GetProperty(Constants::SERVICE_ID).ToStringNoExcept() + ")"};
}

void TrackedServices::open() {
  const auto session = std::make_shared<Session>(this, callbacks);
  {
    const std::lock_guard lock(state->mutex);
    if (state->session) return;
    state->listener = context.AddServiceListener(
        [session](const ServiceEvent& event) { session->handle(event); }, filterOf(criteria));
    state->session = session;
  }
  try {
    session->trackFound(context.GetServiceReferences(criteria.interfaceId, criteria.filter));
  } catch (...) {
    close();
    throw;
  }
}

void TrackedServices::close() {
  std::shared_ptr<Session> session;
  ListenerToken listener;
  {
    const std::lock_guard lock(state->mutex);
    session = std::exchange(state->session, nullptr);
    listener = std::move(state->listener);
    if (session) ++state->closing;
  }
  std::exception_ptr thrown;
  if (session) {
    removeListener(std::move(listener));
    thrown = session->close();
  }
  waitForOthers(session ? 1 : 0);
  if (thrown) std::rethrow_exception(thrown);
}

void TrackedServices::removeListener(ListenerToken listener) noexcept {
  try {
    context.RemoveListener(std::move(listener));
  } catch (const std::exception&) {
    // The context is no longer valid: the listener was removed when its bundle stopped.
  }
}

// Ends the part of the caller, who has closed `own` sessions, and waits for the other threads that
// close one. Not in a callback: they wait for it.
void TrackedServices::waitForOthers(int own) noexcept {
  const bool isInCallback =
      countCalls([this](const Call& call) { return call.tracker == this; }) > 0;
  std::unique_lock lock(state->mutex);
  state->closing -= own;
  state->closed.notify_all();
  if (!isInCallback) state->closed.wait(lock, [this] { return state->closing == 0; });
}

std::shared_ptr<TrackedServices::Session> TrackedServices::current() const {
  const std::lock_guard lock(state->mutex);
  return state->session;
}

TrackedServices::Object TrackedServices::wait(std::optional<std::chrono::nanoseconds> timeout) {
  using Clock = std::chrono::steady_clock;
  // Not added to the time first, which could overflow.
  const auto start = Clock::now();
  const bool hasEnd = timeout && *timeout < Clock::time_point::max() - start;
  const auto end = hasEnd ? start + *timeout : Clock::time_point::max();
  const auto session = current();
  while (true) {
    if (!context) throw std::logic_error("The bundle context is no longer valid");
    if (!session) return nullptr;
    const bool isOver = session->waitUntil(std::min(end, Clock::now() + kContextCheckInterval));
    if (isOver || Clock::now() >= end) return find(best());
  }
}

std::vector<TrackedServices::Entry> TrackedServices::entries() const {
  const auto session = current();
  if (!session) return {};
  std::unique_lock lock(session->mutex);
  std::vector<std::pair<Preference, Entry>> found;
  found.reserve(session->tracked.size());
  for (const auto& [reference, object] : session->tracked) {
    found.push_back({preferenceOf(reference), {reference, object}});
  }
  lock.unlock();
  // By a copy of what defines the order, since another thread may change the ranking of a service.
  std::sort(found.begin(), found.end(),
            [](const auto& left, const auto& right) { return left.first < right.first; });
  std::vector<Entry> entries;
  entries.reserve(found.size());
  for (auto& [preference, entry] : found) entries.push_back(std::move(entry));
  return entries;
}

ServiceReferenceU TrackedServices::best() const {
  const auto session = current();
  if (!session) return {};
  const std::lock_guard lock(session->mutex);
  const auto& tracked = session->tracked;
  const auto last = std::max_element(
      tracked.begin(), tracked.end(),
      [](const auto& left, const auto& right) { return left.first < right.first; });
  return last == tracked.end() ? ServiceReferenceU() : last->first;
}

TrackedServices::Object TrackedServices::find(const ServiceReferenceU& reference) const {
  const auto session = current();
  if (!session) return nullptr;
  const std::lock_guard lock(session->mutex);
  const auto entry = session->tracked.find(reference);
  return entry == session->tracked.end() ? nullptr : entry->second;
}

void TrackedServices::remove(const ServiceReferenceU& reference) {
  if (const auto session = current()) session->untrack(reference);
}

int TrackedServices::size() const {
  const auto session = current();
  if (!session) return 0;
  const std::lock_guard lock(session->mutex);
  return static_cast<int>(session->tracked.size());
}

int TrackedServices::changes() const {
  const auto session = current();
  if (!session) return -1;
  const std::lock_guard lock(session->mutex);
  return session->changes;
}

}  // namespace cppmicroservices::detail

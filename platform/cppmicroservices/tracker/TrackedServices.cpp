#include "cppmicroservices/detail/TrackedServices.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "cppmicroservices/Constants.h"
#include "cppmicroservices/ServiceEvent.h"

namespace cppmicroservices::detail {

namespace {

// How often a waiting thread looks whether its context is still valid, of which nothing tells it.
constexpr std::chrono::milliseconds kContextCheckInterval{50};

std::string filterOf(const TrackedServices::Criteria& criteria) {
  if (criteria.interfaceId.empty()) return criteria.filter;
  const bool hasScope = criteria.interfaceId.starts_with("::");
  return "(" + Constants::OBJECTCLASS + "=" + criteria.interfaceId.substr(hasScope ? 2 : 0) + ")";
}

}  // namespace

/// What is tracked between an `open` and the `close` after it.
class TrackedServices::Session {
 public:
  explicit Session(const Callbacks& callbacks) : callbacks(callbacks) {}

  void handle(const ServiceEvent& event) {
    const bool isGone = event.GetType() == ServiceEvent::SERVICE_UNREGISTERING ||
                        event.GetType() == ServiceEvent::SERVICE_MODIFIED_ENDMATCH;
    if (isGone) {
      untrack(event.GetServiceReference());
    } else {
      track(event.GetServiceReference(), event.GetType() == ServiceEvent::SERVICE_MODIFIED);
    }
  }

  void track(const ServiceReferenceU& reference, bool isModified) {
    std::unique_lock lock(mutex);
    if (isClosed) return;
    if (const auto entry = tracked.find(reference); entry != tracked.end()) {
      if (!isModified) return;
      ++changes;
      const Object object = entry->second;
      call(lock, [&] { callbacks.modified(reference, object); });
    } else if (adding.insert(reference).second) {
      add(lock, reference);
    }
  }

  void untrack(const ServiceReferenceU& reference) {
    std::unique_lock lock(mutex);
    // The thread that adds it removes it.
    if (adding.erase(reference) > 0) return;
    const auto entry = tracked.find(reference);
    if (entry == tracked.end()) return;
    const auto [removed, object] = *entry;
    tracked.erase(entry);
    ++changes;
    call(lock, [&, removed = removed, object = object] { callbacks.removed(removed, object); });
  }

  // Removes all services; throws the first exception of a callback afterwards.
  void close() {
    std::unique_lock lock(mutex);
    isClosed = true;
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
    const std::thread::id self = std::this_thread::get_id();
    changed.wait(lock, [&] {
      return std::all_of(callers.begin(), callers.end(), [&](auto id) { return id == self; });
    });
    if (thrown) std::rethrow_exception(thrown);
  }

  // Returns false when the time was up, or nothing will be tracked any more.
  bool waitUntil(std::chrono::steady_clock::time_point end) {
    std::unique_lock lock(mutex);
    return changed.wait_until(lock, end, [this] { return isClosed || !tracked.empty(); });
  }

  mutable std::mutex mutex;
  std::unordered_map<ServiceReferenceU, Object> tracked;
  int changes = 0;
  bool isClosed = false;

 private:
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

  // Calls `function` without the lock.
  template <class Function>
  void call(std::unique_lock<std::mutex>& lock, const Function& function) {
    callers.push_back(std::this_thread::get_id());
    lock.unlock();
    try {
      function();
    } catch (...) {
      lock.lock();
      endCall();
      throw;
    }
    lock.lock();
    endCall();
  }

  void endCall() {
    callers.erase(std::find(callers.begin(), callers.end(), std::this_thread::get_id()));
    changed.notify_all();
  }

  const Callbacks callbacks;
  std::condition_variable changed;
  // Those for which a thread is in `Callbacks::adding`.
  std::unordered_set<ServiceReferenceU> adding;
  // The threads that are in a callback.
  std::vector<std::thread::id> callers;
};

struct TrackedServices::State {
  mutable std::mutex mutex;
  std::shared_ptr<Session> session;
  ListenerToken listener;
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
  const auto session = std::make_shared<Session>(callbacks);
  {
    const std::lock_guard lock(state->mutex);
    if (state->session) return;
    state->listener = context.AddServiceListener(
        [session](const ServiceEvent& event) { session->handle(event); }, filterOf(criteria));
    state->session = session;
  }
  try {
    for (const auto& reference :
         context.GetServiceReferences(criteria.interfaceId, criteria.filter)) {
      session->track(reference, false);
    }
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
  }
  if (!session) return;
  try {
    context.RemoveListener(std::move(listener));
  } catch (const std::runtime_error&) {
    // The context is no longer valid: the listener was removed when its bundle stopped.
  }
  session->close();
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
  std::vector<Entry> entries;
  entries.reserve(session->tracked.size());
  for (const auto& [reference, object] : session->tracked) entries.push_back({reference, object});
  lock.unlock();
  std::sort(entries.begin(), entries.end(),
            [](const Entry& left, const Entry& right) { return left.reference < right.reference; });
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

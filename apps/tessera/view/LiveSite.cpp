#include "tessera/view/LiveSite.hpp"

#include <utility>

namespace tessera::view {

void LiveSite::publish(std::string html) {
  const std::lock_guard lock(mutex);
  current = std::make_shared<Page>(Page{current->version + 1, std::move(html)});
  published.notify_all();
}

std::chrono::milliseconds LiveSite::abandonedFor() const {
  const std::lock_guard lock(mutex);
  if (readers != 0 || left == Clock::time_point()) return {};
  return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - left);
}

std::shared_ptr<const Page> LiveSite::page() const {
  const std::lock_guard lock(mutex);
  return current;
}

std::uint64_t LiveSite::awaitVersion(std::uint64_t known,
                                     std::chrono::milliseconds patience) const {
  std::unique_lock lock(mutex);
  published.wait_for(lock, patience, [&] { return current->version != known; });
  return current->version;
}

void LiveSite::addReader() {
  const std::lock_guard lock(mutex);
  ++readers;
}

void LiveSite::removeReader() noexcept {
  const std::lock_guard lock(mutex);
  if (--readers == 0) left = Clock::now();
}

}  // namespace tessera::view

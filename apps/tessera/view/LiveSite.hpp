#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>

#include "tessera/view/Site.hpp"

namespace tessera::view {

/// A page whose versions follow one another.
class LiveSite final : public Site {
 public:
  /// Makes `html` the next version of the page.
  void publish(std::string html);

  /// Returns how long nobody has had the page open; zero if somebody has, or nobody has had yet.
  std::chrono::milliseconds abandonedFor() const;

  std::shared_ptr<const Page> page() const override;
  std::uint64_t awaitVersion(std::uint64_t known,
                             std::chrono::milliseconds patience) const override;
  void addReader() override;
  void removeReader() noexcept override;

 private:
  using Clock = std::chrono::steady_clock;

  mutable std::mutex mutex;
  mutable std::condition_variable published;
  std::shared_ptr<const Page> current = std::make_shared<Page>();
  std::size_t readers = 0;
  // When the last reader left; the epoch if none has.
  Clock::time_point left;
};

}  // namespace tessera::view

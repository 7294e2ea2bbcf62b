#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/log/addSink.hpp"
#include "quenlith/shared/logging/trace.hpp"

namespace quenlith::test {

/// Passes every record of the shared logger to a function while it lives. Restores the mask of
/// enabled severities when it is destroyed.
class LogCollector {
 public:
  using Sink = std::function<void(std::uint32_t severity, std::string_view message)>;

  LogCollector(std::uint32_t enabledSeverities, Sink sink)
      : registration(foundation::log::addSink(std::move(sink))) {
    shared::logging::getLogger().setEnabledSeverities(enabledSeverities);
  }
  ~LogCollector() { shared::logging::getLogger().setEnabledSeverities(earlierSeverities); }
  LogCollector(const LogCollector&) = delete;
  LogCollector& operator=(const LogCollector&) = delete;

 private:
  std::uint32_t earlierSeverities = shared::logging::getLogger().enabledSeverities();
  foundation::log::SinkRegistration registration;
};

/// Enables the progress records while it lives, and stores them.
class LogRecords {
 public:
  const std::vector<std::string>& get() const { return messages; }
  void clear() { messages.clear(); }

 private:
  std::vector<std::string> messages;
  LogCollector collector{
      shared::logging::kTraceSeverity,
      [this](std::uint32_t, std::string_view message) { messages.emplace_back(message); }};
};

}  // namespace quenlith::test

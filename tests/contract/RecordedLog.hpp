#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/log/addSink.hpp"
#include "quenlith/shared/logging/getLogger.hpp"

namespace contract {

/// One record as the sinks see it.
struct LogRecord {
  std::uint32_t severity;
  std::string message;
};

/// Enables severity 8 and records what reaches the sinks, until it is destroyed.
class RecordedLog {
 public:
  RecordedLog() { enable(true); }
  RecordedLog(const RecordedLog&) = delete;
  RecordedLog& operator=(const RecordedLog&) = delete;
  ~RecordedLog() { enable(false); }

  /// Sets or clears the bit of severity 8 in the mask of the shared logger.
  static void enable(bool on) {
    quenlith::shared::logging::getLogger().setEnabledSeverities(on ? 8U : 0U);
  }

  const std::vector<LogRecord>& records() const { return received; }

  std::vector<std::string> messages() const {
    std::vector<std::string> texts;
    for (const LogRecord& record : received) texts.push_back(record.message);
    return texts;
  }

  std::ptrdiff_t count(const std::string& message) const {
    const std::vector<std::string> all = messages();
    return std::count(all.begin(), all.end(), message);
  }

  void clear() { received.clear(); }

 private:
  std::vector<LogRecord> received;
  foundation::log::SinkRegistration registration =
      foundation::log::addSink([this](std::uint32_t severity, std::string_view message) {
        received.push_back({severity, std::string(message)});
      });
};

}  // namespace contract

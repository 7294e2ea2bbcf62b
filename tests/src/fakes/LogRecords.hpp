#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "foundation/log/addSink.hpp"
#include "quenlith/shared/logging/trace.hpp"

namespace quenlith::test {

/// Collects the progress records while it lives; they are enabled meanwhile.
class LogRecords {
 public:
  LogRecords() {
    shared::logging::getLogger().setEnabledSeverities(shared::logging::kTraceSeverity);
  }
  ~LogRecords() { shared::logging::getLogger().setEnabledSeverities(0); }
  LogRecords(const LogRecords&) = delete;
  LogRecords& operator=(const LogRecords&) = delete;

  const std::vector<std::string>& get() const { return messages; }
  void clear() { messages.clear(); }

 private:
  std::vector<std::string> messages;
  foundation::log::SinkRegistration sink = foundation::log::addSink(
      [this](std::uint32_t, std::string_view message) { messages.emplace_back(message); });
};

}  // namespace quenlith::test

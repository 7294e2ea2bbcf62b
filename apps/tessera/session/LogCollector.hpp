#pragma once

#include <string>
#include <utility>
#include <vector>

#include "foundation/log/addSink.hpp"

namespace tessera::session {

/// Enables the parsers' progress records while it lives and collects them.
///
/// Not thread-safe: only the thread that parses may log.
class LogCollector {
 public:
  LogCollector();
  ~LogCollector();
  LogCollector(const LogCollector&) = delete;
  LogCollector& operator=(const LogCollector&) = delete;

  /// Returns the records since the last call, in order.
  std::vector<std::string> take() { return std::exchange(records, {}); }

 private:
  std::uint32_t severitiesBefore;
  std::vector<std::string> records;
  foundation::log::SinkRegistration sink;
};

}  // namespace tessera::session

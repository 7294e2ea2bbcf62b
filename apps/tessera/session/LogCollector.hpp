#pragma once

#include <string>
#include <utility>
#include <vector>

#include "foundation/log/addSink.hpp"

namespace tessera::session {

/// Switches the parsers' progress records on for its life and collects them.
///
/// Records of one thread at a time: the thread that parses.
class LogCollector {
 public:
  LogCollector();
  ~LogCollector();
  LogCollector(const LogCollector&) = delete;
  LogCollector& operator=(const LogCollector&) = delete;

  /// Gives away the records since the last call, in order.
  std::vector<std::string> take() { return std::exchange(records, {}); }

 private:
  std::uint32_t severitiesBefore;
  std::vector<std::string> records;
  foundation::log::SinkRegistration sink;
};

}  // namespace tessera::session

#pragma once

#include <cstdint>

#include "foundation/log/addSink.hpp"
#include "oracle/support/World.hpp"

namespace quenlith::oracle {

/// Writes every record of the shared logger into a world's trace for as long as it lives.
/// Severity 8 is enabled while it lives when the world's plan has logging, else nothing is.
class LogRecorder {
 public:
  /// Borrows `world`.
  explicit LogRecorder(World& world);
  ~LogRecorder();
  LogRecorder(const LogRecorder&) = delete;
  LogRecorder& operator=(const LogRecorder&) = delete;

 private:
  std::uint32_t earlierMask;
  foundation::log::SinkRegistration registration;
};

}  // namespace quenlith::oracle

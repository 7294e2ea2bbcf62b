#pragma once

#include "oracle/support/World.hpp"
#include "support/LogCollector.hpp"

namespace quenlith::oracle {

/// Appends every record of the shared logger to the trace of a world while it lives. Severity 8 is
/// enabled if the world's plan has logging, and no other one.
class LogRecorder {
 public:
  /// Borrows `world`.
  explicit LogRecorder(World& world);

 private:
  test::LogCollector collector;
};

}  // namespace quenlith::oracle

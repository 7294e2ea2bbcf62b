#pragma once

#include "oracle/support/World.hpp"
#include "support/LogCollector.hpp"

namespace quenlith::oracle {

/// Appends every record of the shared logger to the trace of a world while it lives. Enables only
/// severity 8, and only if the world's plan has logging.
class LogRecorder {
 public:
  /// Borrows `world`.
  explicit LogRecorder(World& world);

 private:
  test::LogCollector collector;
};

}  // namespace quenlith::oracle

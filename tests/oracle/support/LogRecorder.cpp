#include "oracle/support/LogRecorder.hpp"

#include <string>

#include "quenlith/shared/logging/getLogger.hpp"
#include "quenlith/shared/logging/trace.hpp"

namespace quenlith::oracle {

using shared::logging::getLogger;

LogRecorder::LogRecorder(World& world) : earlierMask(getLogger().enabledSeverities()) {
  const bool logging = world.getPlan().logging;
  getLogger().setEnabledSeverities(logging ? shared::logging::kTraceSeverity : 0U);
  registration = foundation::log::addSink([&world](std::uint32_t severity, std::string_view text) {
    const bool expected = severity == shared::logging::kTraceSeverity;
    world.log((expected ? "" : "severity " + std::to_string(severity) + ' ') + std::string(text));
  });
}

LogRecorder::~LogRecorder() {
  getLogger().setEnabledSeverities(earlierMask);
}

}  // namespace quenlith::oracle

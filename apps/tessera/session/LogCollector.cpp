#include "tessera/session/LogCollector.hpp"

#include "quenlith/shared/logging/trace.hpp"

namespace tessera::session {

using quenlith::shared::logging::getLogger;
using quenlith::shared::logging::kTraceSeverity;

LogCollector::LogCollector()
    : severitiesBefore(getLogger().enabledSeverities()),
      sink(foundation::log::addSink([this](std::uint32_t severity, std::string_view message) {
        if (severity == kTraceSeverity) records.emplace_back(message);
      })) {
  getLogger().setEnabledSeverities(severitiesBefore | kTraceSeverity);
}

LogCollector::~LogCollector() {
  getLogger().setEnabledSeverities(severitiesBefore);
}

}  // namespace tessera::session

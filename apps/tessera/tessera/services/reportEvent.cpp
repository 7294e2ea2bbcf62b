#include "tessera/services/reportEvent.hpp"

#include "tessera/Problem.hpp"
#include "tessera/commands/report.hpp"

namespace tessera::services {

using cppmicroservices::FrameworkEvent;

void reportEvent(const FrameworkEvent& event) {
  const FrameworkEvent::Type type = event.GetType();
  if (type != FrameworkEvent::FRAMEWORK_ERROR && type != FrameworkEvent::FRAMEWORK_WARNING) return;
  // The message names the bundle's file.
  commands::report(
      describe({.file = "tessera", .place = {}, .what = event.GetMessage(), .remedy = {}}));
}

}  // namespace tessera::services

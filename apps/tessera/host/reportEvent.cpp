#include "tessera/host/reportEvent.hpp"

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/diagnostics/report.hpp"

namespace tessera::host {

using cppmicroservices::FrameworkEvent;

void reportEvent(const FrameworkEvent& event) {
  const FrameworkEvent::Type type = event.GetType();
  if (type != FrameworkEvent::FRAMEWORK_ERROR && type != FrameworkEvent::FRAMEWORK_WARNING) return;
  // The message names the bundle's file.
  diagnostics::report(diagnostics::describe(
      {.file = "tessera", .place = {}, .what = event.GetMessage(), .remedy = {}}));
}

}  // namespace tessera::host

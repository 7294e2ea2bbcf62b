#include "tessera/commands/doctor.hpp"

#include <unistd.h>

#include "tessera/commands/status.hpp"
#include "tessera/doctor/DiagnosisJson.hpp"
#include "tessera/doctor/DiagnosisText.hpp"
#include "tessera/doctor/diagnose.hpp"
#include "tessera/files/OutputFile.hpp"
#include "tessera/terminal/settings.hpp"

namespace tessera::commands {

int doctor(const DoctorOptions& options) {
  const tessera::doctor::Diagnosis diagnosis = tessera::doctor::diagnose(options.bundles);
  files::OutputFile output(STDOUT_FILENO, "standard output");
  if (options.format == DoctorFormat::kJson) {
    tessera::doctor::appendJson(output.text(), diagnosis);
  } else {
    tessera::doctor::appendText(output.text(), diagnosis,
                                terminal::wantsColor(terminal::ColorMode::kAuto, STDOUT_FILENO));
  }
  output.flush();
  return diagnosis.problems.empty() ? kFine : kUnusable;
}

}  // namespace tessera::commands

#include "tessera/commands/doctor.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "tessera/commands/status.hpp"
#include "tessera/doctor/DiagnosisJson.hpp"
#include "tessera/doctor/DiagnosisText.hpp"
#include "tessera/doctor/diagnose.hpp"
#include "tessera/files/OutputFile.hpp"
#include "tessera/terminal/settings.hpp"

namespace tessera::commands {

namespace {

int write(const DoctorOptions& options, const tessera::doctor::Diagnosis& diagnosis) {
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

/// Returns the status of `process` when it has ended, as `waitpid` gives it.
int awaitEnd(pid_t process) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

bool isOwnStatus(int status) {
  return WIFEXITED(status) && (WEXITSTATUS(status) == kFine || WEXITSTATUS(status) == kUnusable);
}

std::string describeStatus(int status) {
  if (WIFEXITED(status)) return "with status " + std::to_string(WEXITSTATUS(status));
  const int number = WTERMSIG(status);
  return "by signal " + std::to_string(number) + " (" + strsignal(number) + ")";
}

}  // namespace

int doctor(const DoctorOptions& options) {
  // A bundle may end the process in which it is started. Everything is written at once, so that
  // this process writes all or nothing in that case. If there is no process to be had, this one
  // starts the bundles.
  const pid_t process = fork();
  if (process <= 0) {
    const int status = write(options, tessera::doctor::diagnose(options.bundles));
    if (process == 0) std::_Exit(status);
    return status;
  }
  const int status = awaitEnd(process);
  if (isOwnStatus(status)) return WEXITSTATUS(status);
  return write(options, tessera::doctor::describeEnd(describeStatus(status)));
}

}  // namespace tessera::commands

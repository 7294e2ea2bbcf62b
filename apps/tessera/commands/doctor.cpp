#include "tessera/commands/doctor.hpp"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "tessera/commands/status.hpp"
#include "tessera/doctor/DiagnosisJson.hpp"
#include "tessera/doctor/DiagnosisText.hpp"
#include "tessera/doctor/diagnose.hpp"
#include "tessera/files/Descriptor.hpp"
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

/// A pipe that does not block: what starts with a bundle may keep its end open.
struct Pipe {
  Pipe() {
    std::array<int, 2> ends{-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
    readEnd = files::Descriptor(ends[0]);
    writeEnd = files::Descriptor(ends[1]);
  }
  bool isOpen() const noexcept { return readEnd.get() >= 0; }

  files::Descriptor readEnd{-1};
  files::Descriptor writeEnd{-1};
};

/// Returns the status of `process` when it has ended, as `waitpid` gives it.
int awaitEnd(pid_t process) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

/// Says when this process has made a diagnosis, or has failed by itself: a bundle that ends the
/// process ends it before.
class Completion {
 public:
  explicit Completion(const files::Descriptor& pipe) noexcept : pipe(pipe) {}
  ~Completion() {
    while (::write(pipe.get(), "", 1) < 0 && errno == EINTR) {
    }
  }
  Completion(const Completion&) = delete;
  Completion& operator=(const Completion&) = delete;

 private:
  const files::Descriptor& pipe;
};

/// Returns whether the process that has ended has said so to the other end of `pipe`.
bool isComplete(const files::Descriptor& pipe) {
  char said = 0;
  return ::read(pipe.get(), &said, 1) == 1;
}

bool isOwnStatus(int status) {
  return WIFEXITED(status) && (WEXITSTATUS(status) == kFine || WEXITSTATUS(status) == kUnusable);
}

tessera::doctor::Diagnosis diagnose(const DoctorOptions& options, const files::Descriptor& pipe) {
  const Completion completion(pipe);
  return tessera::doctor::diagnose(options.bundles);
}

std::string describeStatus(int status) {
  if (WIFEXITED(status)) return "with status " + std::to_string(WEXITSTATUS(status));
  const int number = WTERMSIG(status);
  return "by signal " + std::to_string(number) + " (" + strsignal(number) + ")";
}

}  // namespace

int doctor(const DoctorOptions& options) {
  // A bundle may end the process in which it is started, with any status. Everything is written at
  // once, so that this process writes all or nothing in that case. If there is no process to be
  // had, this one starts the bundles.
  Pipe pipe;
  const pid_t process = pipe.isOpen() ? fork() : -1;
  if (process <= 0) {
    const int status = write(options, diagnose(options, pipe.writeEnd));
    if (process == 0) std::_Exit(status);
    return status;
  }
  const int status = awaitEnd(process);
  if (isComplete(pipe.readEnd) && isOwnStatus(status)) return WEXITSTATUS(status);
  return write(options, tessera::doctor::describeEnd(describeStatus(status)));
}

}  // namespace tessera::commands

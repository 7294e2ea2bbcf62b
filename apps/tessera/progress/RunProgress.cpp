#include "tessera/progress/RunProgress.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tessera/diagnostics/StatusLine.hpp"
#include "tessera/diagnostics/report.hpp"
#include "tessera/progress/InputProgress.hpp"
#include "tessera/terminal/settings.hpp"

namespace tessera::progress {
namespace {

using std::chrono::milliseconds;

// A shorter run needs no progress.
constexpr milliseconds kPatience{500};
constexpr milliseconds kLineInterval{1000};
// Asking for sizes takes about 2 ms each time: the run goes on meanwhile.
constexpr std::size_t kSizesPerTime = 2000;

bool isTerminal() {
  const char* type = std::getenv("TERM");
  return ::isatty(STDERR_FILENO) != 0 && (type == nullptr || std::string_view(type) != "dumb");
}

}  // namespace

RunProgress::RunProgress(Mode mode, const std::vector<inputs::Input>& inputs)
    : target(targetOf(mode)), inputs(inputs) {
  next = begin;
  if (target == Target::kLines) next += kLineInterval;
  if (mode == Mode::kAuto) next += kPatience;
}

RunProgress::Target RunProgress::targetOf(Mode mode) {
  if (mode == Mode::kNever) return Target::kNone;
  if (isTerminal()) return Target::kTerminal;
  return mode == Mode::kAlways ? Target::kLines : Target::kNone;
}

void RunProgress::setDone(std::size_t count) {
  if (!isActive()) return;
  const std::lock_guard lock(mutex);
  for (; done < count; ++done) doneBytes += sizeOf(done);
}

/// Only a regular file has a size; of others, and of those that cannot be read, it is 0.
std::uint64_t RunProgress::sizeOf(std::size_t index) {
  while (sizes.size() <= index) {
    struct stat status;
    const std::string& path = inputs[sizes.size()].path;
    const bool isFile = ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
    sizes.push_back(isFile ? static_cast<std::uint64_t>(status.st_size) : 0);
    knownBytes += sizes.back();
  }
  return sizes[index];
}

Figures RunProgress::figuresAt(Clock::time_point now, std::span<const Current> current) {
  Figures figures;
  figures.filesDone = done;
  figures.files = inputs.size();
  figures.bytesDone = doneBytes;
  for (const Current& input : current) {
    if (input.index < done) continue;
    figures.bytesDone +=
        static_cast<std::uint64_t>(static_cast<double>(sizeOf(input.index)) *
                                   static_cast<double>(input.share) / InputProgress::kWhole);
    if (input.share == InputProgress::kWhole) ++figures.filesDone;
  }
  if (sizes.size() == inputs.size()) figures.bytes = knownBytes;
  figures.elapsed = std::chrono::duration_cast<milliseconds>(now - begin);
  return figures;
}

void RunProgress::show(std::span<const Current> current) {
  const Clock::time_point now = Clock::now();
  if (!isActive() || now < next) return;
  const std::lock_guard lock(mutex);
  if (!inputs.empty()) sizeOf(std::min(inputs.size(), sizes.size() + kSizesPerTime) - 1);
  const Figures figures = figuresAt(now, current);
  if (target == Target::kTerminal) {
    next = now + kInterval;
    // In the last column the cursor would be moved to the next row.
    diagnostics::showStatus(describeProgress(figures, terminal::columnsOf(STDERR_FILENO) - 1));
  } else {
    next = now + kLineInterval;
    diagnostics::report("tessera: " + describeProgress(figures, std::string::npos));
  }
}

void RunProgress::finish() {
  if (!isActive()) return;
  if (target == Target::kTerminal) return diagnostics::removeStatusAtExit();
  setDone(inputs.size());
  const std::lock_guard lock(mutex);
  diagnostics::report("tessera: " + describeEnd(figuresAt(Clock::now(), {})));
}

}  // namespace tessera::progress

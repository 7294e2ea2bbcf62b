#pragma once

#include <csignal>
#include <cstddef>
#include <string>

namespace tessera::files {

/// From now on, to write more to a file than the process may is an error and does not end it, and
/// how a worker ended can be asked, whatever the caller of the program has set.
void setUpSignals() noexcept;

/// From now on, a signal to end (SIGINT, SIGTERM or SIGHUP from the user or the system, SIGPIPE
/// when nobody reads the output any more) ends the process at once with status 128 + its number,
/// after the files are removed that are then to be removed. A signal that is ignored stays so. The
/// main thread takes all of them.
void endOnInterruption() noexcept;

/// Holds those signals back as long as this object exists, for a moment only. For the main thread:
/// they are those of the process.
class HeldInterruptions {
 public:
  HeldInterruptions() noexcept;
  ~HeldInterruptions();
  HeldInterruptions(const HeldInterruptions&) = delete;
  HeldInterruptions& operator=(const HeldInterruptions&) = delete;

 private:
  sigset_t previous{};
};

/// A file that an interruption removes, as long as this object exists. There may be few of them.
class RemovedOnInterruption {
 public:
  /// The file `name` in the open folder `folder`. Throws std::length_error when there are too many
  /// or the name is too long.
  RemovedOnInterruption(int folder, const std::string& name);
  ~RemovedOnInterruption();
  RemovedOnInterruption(const RemovedOnInterruption&) = delete;
  RemovedOnInterruption& operator=(const RemovedOnInterruption&) = delete;

 private:
  std::size_t slot;
};

}  // namespace tessera::files

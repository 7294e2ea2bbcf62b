#pragma once

#include <string_view>

namespace tessera::diagnostics {

/// Shows `text` as the last row of the terminal that standard error is, in place of the text that
/// was shown before. Does nothing while the cursor is within a row of other output.
void showStatus(std::string_view text);

/// Removes that row. Safe in a signal handler.
void removeStatusAtExit() noexcept;

/// In a worker process: this process does not show a status, but one may be in the way of what it
/// writes.
void expectForeignStatus() noexcept;

/// Removes the row while something else is written to the terminal. It is shown again by the next
/// `showStatus`, which waits until this object is destroyed.
class StatusPause {
 public:
  StatusPause();
  ~StatusPause();
  StatusPause(const StatusPause&) = delete;
  StatusPause& operator=(const StatusPause&) = delete;

  /// `text`, which is not empty, was written.
  void wrote(std::string_view text) noexcept;
};

}  // namespace tessera::diagnostics

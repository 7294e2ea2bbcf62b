#include "tessera/diagnostics/StatusLine.hpp"

#include <unistd.h>

#include <atomic>
#include <mutex>
#include <string>

namespace tessera::diagnostics {
namespace {

// Back to the first column, and nothing from there on.
constexpr std::string_view kErase = "\r\x1b[K";

/// There is one terminal, so there is one of these.
struct StatusRow {
  std::mutex mutex;
  std::atomic<bool> isShown = false;
  // Whether other output ended within a row.
  bool isWithinRow = false;
};

StatusRow& row() {
  static StatusRow only;
  return only;
}

/// A terminal that takes no more text gets no status.
void put(std::string_view text) noexcept {
  static_cast<void>(::write(STDERR_FILENO, text.data(), text.size()) < 0);
}

}  // namespace

void showStatus(std::string_view text) {
  const std::lock_guard lock(row().mutex);
  if (row().isWithinRow) return;
  row().isShown = true;
  put(std::string(kErase).append(text));
}

void removeStatusAtExit() noexcept {
  if (row().isShown.exchange(false)) put(kErase);
}

void expectForeignStatus() noexcept {
  row().isShown = true;
}

StatusPause::StatusPause() {
  row().mutex.lock();
  removeStatusAtExit();
}

StatusPause::~StatusPause() {
  row().mutex.unlock();
}

void StatusPause::wrote(std::string_view text) noexcept {
  row().isWithinRow = text.back() != '\n';
}

}  // namespace tessera::diagnostics

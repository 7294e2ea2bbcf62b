#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string_view>

#include "foundation/log/MessageWriter.hpp"
#include "foundation/log/SlimLock.hpp"
#include "quenlith/export/logging.hpp"

namespace foundation::log {

/// The bits of a severity mask that count.
inline constexpr std::uint32_t kSignificantSeverities = 0x7FFF;

struct RecordSource;

template <typename Char>
class basic_diagnostic_logger;

/// Emits diagnostic records through the process's logging core.
///
/// A severity is a single bit; it is enabled when its bit is set in the logger's mask. At
/// first no severity is enabled. All operations may be called from any thread.
template <>
class QUENLITH_LOGGING_EXPORT basic_diagnostic_logger<char> {
 public:
  basic_diagnostic_logger();
  ~basic_diagnostic_logger();
  basic_diagnostic_logger(const basic_diagnostic_logger&) = delete;
  basic_diagnostic_logger& operator=(const basic_diagnostic_logger&) = delete;

  /// Tells whether one of the low 15 bits of `severity` is enabled: one load and one test.
  bool isEnabled(std::uint32_t severity) const noexcept {
    return (mask.load(std::memory_order_relaxed) & severity & kSignificantSeverities) != 0;
  }

  std::uint32_t enabledSeverities() const noexcept { return mask.load(std::memory_order_relaxed); }

  /// Replaces the mask of enabled severities.
  void setEnabledSeverities(std::uint32_t severities) noexcept {
    mask.store(severities, std::memory_order_relaxed);
  }

  /// Makes a record of `message` and gives it to the core, without looking at the mask.
  ///
  /// Nothing happens, and the lock is not taken, when the core is switched off. The lock is
  /// held only while the record is opened. Throws what the core, its filters and its sinks
  /// throw.
  void emit(std::uint32_t severity, std::string_view message);

  /// Like `emit` of a text, but `writer` is called only once a record has been opened. Numbers
  /// are written as the classic locale has them. A record during whose writing an exception
  /// began is dropped; the exception goes on to the caller.
  void emit(std::uint32_t severity, MessageWriter writer);

  /// Returns the lock that covers the opening of a record.
  SRWLOCK& lock() noexcept { return openingLock; }

  /// Returns what a caller needs to open and push records itself. The type is complete in
  /// `foundation/log/RecordSource.hpp`; including that requires Boost.Log.
  const RecordSource& source() const noexcept;

 private:
  struct Backend;

  std::atomic<std::uint32_t> mask{0};
  SRWLOCK openingLock;
  std::unique_ptr<Backend> backend;
};

}  // namespace foundation::log

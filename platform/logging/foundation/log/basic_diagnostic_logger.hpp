#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string_view>

#include "foundation/log/MessageWriter.hpp"
#include "foundation/log/SlimLock.hpp"
#include "quenlith/export/logging.hpp"

namespace foundation::log {

/// The bits of a severity that are compared with a logger's mask.
inline constexpr std::uint32_t kSignificantSeverities = 0x7FFF;

struct RecordSource;

template <typename Char>
class basic_diagnostic_logger;

/// Emits diagnostic records through the process's logging core.
///
/// A severity is a single bit; it is enabled when its bit is set in the logger's mask. Initially
/// no severity is enabled. Thread-safe.
template <>
class QUENLITH_LOGGING_EXPORT basic_diagnostic_logger<char> {
 public:
  basic_diagnostic_logger();
  ~basic_diagnostic_logger();
  basic_diagnostic_logger(const basic_diagnostic_logger&) = delete;
  basic_diagnostic_logger& operator=(const basic_diagnostic_logger&) = delete;

  /// Returns whether one of the low 15 bits of `severity` is enabled: one load and one test.
  bool isEnabled(std::uint32_t severity) const noexcept {
    return (mask.load(std::memory_order_relaxed) & severity & kSignificantSeverities) != 0;
  }

  /// Returns the mask of enabled severities.
  std::uint32_t enabledSeverities() const noexcept { return mask.load(std::memory_order_relaxed); }

  /// Replaces the mask of enabled severities.
  void setEnabledSeverities(std::uint32_t severities) noexcept {
    mask.store(severities, std::memory_order_relaxed);
  }

  /// Passes a record with `message` to the core, without checking the mask.
  ///
  /// Does nothing, and does not acquire the lock, when logging is disabled in the core. The lock is
  /// held only while the record is opened. Throws what the core, its filters and its sinks throw.
  void emit(std::uint32_t severity, std::string_view message);

  /// Like the overload for a text, but `writer` writes the message to a stream with the classic
  /// locale, and is called only if a record has been opened. If it throws, the record is dropped
  /// and the exception propagates.
  void emit(std::uint32_t severity, MessageWriter writer);

  /// Returns the lock that is held while a record is opened.
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

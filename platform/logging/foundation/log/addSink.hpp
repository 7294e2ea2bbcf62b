#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "quenlith/export/logging.hpp"

namespace foundation::log {

/// Receives one record: its severity and its text, which is borrowed for the call.
using Receiver = std::function<void(std::uint32_t severity, std::string_view message)>;

/// Keeps a receiver registered until it is destroyed. Move-only; assigning to it removes the
/// receiver that it kept before.
class QUENLITH_LOGGING_EXPORT SinkRegistration {
 public:
  /// Makes a registration without a receiver.
  SinkRegistration() noexcept;
  SinkRegistration(SinkRegistration&& other) noexcept;
  SinkRegistration& operator=(SinkRegistration&& other) noexcept;

  /// Removes the receiver. Waits for a call in progress on another thread; after that the receiver
  /// is not called again.
  ~SinkRegistration();

 private:
  struct Sink;
  friend QUENLITH_LOGGING_EXPORT SinkRegistration addSink(Receiver receiver);
  explicit SinkRegistration(std::unique_ptr<Sink> sink) noexcept;
  void remove() noexcept;

  std::unique_ptr<Sink> sink;
};

/// Adds a receiver of every record that a logger of this process emits.
///
/// A receiver is called on the thread that emits the record, and by one thread at a time. Its
/// exceptions propagate to the code that emits. The receiver does not filter by severity: that is
/// the task of the loggers' masks.
[[nodiscard]] QUENLITH_LOGGING_EXPORT SinkRegistration addSink(Receiver receiver);

}  // namespace foundation::log

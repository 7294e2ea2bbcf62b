#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "quenlith/export/logging.hpp"

namespace foundation::log {

/// Receives one record: its severity and its text, which is borrowed for the call.
using Receiver = std::function<void(std::uint32_t severity, std::string_view message)>;

/// Keeps a receiver of records in place for as long as it lives. Move-only; assigning to it
/// gives up what it held.
class QUENLITH_LOGGING_EXPORT SinkRegistration {
 public:
  /// Makes a registration that keeps nothing.
  SinkRegistration() noexcept;
  SinkRegistration(SinkRegistration&& other) noexcept;
  SinkRegistration& operator=(SinkRegistration&& other) noexcept;

  /// Takes the receiver away. A delivery under way on another thread is waited for; after
  /// that the receiver is called no more.
  ~SinkRegistration();

 private:
  struct Sink;
  friend QUENLITH_LOGGING_EXPORT SinkRegistration addSink(Receiver receiver);
  explicit SinkRegistration(std::unique_ptr<Sink> registered) noexcept;
  void remove() noexcept;

  std::unique_ptr<Sink> sink;
};

/// Adds a receiver of every record that a logger of this process emits.
///
/// Calls of one receiver follow one another, in the thread that emits; what it throws
/// reaches the emitter. Which records are made is up to the loggers' severity masks.
[[nodiscard]] QUENLITH_LOGGING_EXPORT SinkRegistration addSink(Receiver receiver);

}  // namespace foundation::log

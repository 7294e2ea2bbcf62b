#pragma once

#include <cstdint>

#include "tessera/workers/Job.hpp"

namespace tessera::workers {

/// What a worker tells its parent through a socket.
struct Frame {
  enum class Kind : std::uint8_t {
    /// The job was made.
    kReady,
    /// The job could not be made; a message before says why.
    kUnusable,
    /// `slot` contains `size` bytes of the output of the current input.
    kText,
    /// `slot` contains a message of `size` bytes.
    kMessage,
    /// The current input is done.
    kEnd,
    /// The worker has ended within the current input. The parent adds this one.
    kLost,
  };

  Kind kind = Kind::kReady;
  Outcome outcome = Outcome::kDone;
  std::uint16_t slot = 0;
  std::uint32_t size = 0;
};

}  // namespace tessera::workers

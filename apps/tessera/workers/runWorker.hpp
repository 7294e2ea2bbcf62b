#pragma once

#include <cstdint>

#include "tessera/workers/Job.hpp"
#include "tessera/workers/SharedSlots.hpp"

namespace tessera::workers {

/// The end of the commands of a worker.
inline constexpr std::uint64_t kNoMoreInputs = UINT64_MAX;

/// Runs a worker in this process: makes a job, reads numbers
/// of inputs from `socket`, works on each, and writes frames to `socket` and text to `slots`.
/// Returns at `kNoMoreInputs` or the end of the channel.
void runWorker(const MakeJob& makeJob, SharedSlots& slots, int socket);

}  // namespace tessera::workers

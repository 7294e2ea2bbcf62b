#pragma once

#include <cstddef>

#include "tessera/progress/RunProgress.hpp"
#include "tessera/workers/Collector.hpp"
#include "tessera/workers/Job.hpp"

namespace tessera::workers {

/// Works on the inputs numbered from 0 up to, but not including, `count` in this process, and shows
/// how far it is with a thread. Throws what the job and the collector throw.
void runHere(const MakeJob& makeJob, Collector& collector, std::size_t count,
             progress::RunProgress& shown);

}  // namespace tessera::workers

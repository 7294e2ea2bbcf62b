#pragma once

#include <cstddef>

#include "tessera/workers/Collector.hpp"
#include "tessera/workers/Job.hpp"

namespace tessera::workers {

/// Works on the inputs numbered from 0 up to, but not including, `count` in this process. Throws
/// what the job and the collector throw.
void runHere(const MakeJob& makeJob, Collector& collector, std::size_t count);

}  // namespace tessera::workers

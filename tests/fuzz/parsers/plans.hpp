#pragma once

#include "fuzz/Choices.hpp"
#include "oracle/support/World.hpp"

namespace quenlith::fuzz {

/// Decides which services the parsers have, by the next bytes: without any, only the default code
/// element parser of the bundle, and no log.
oracle::WorldPlan choosePlan(Choices& choices);

}  // namespace quenlith::fuzz

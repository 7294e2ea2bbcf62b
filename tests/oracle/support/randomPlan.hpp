#pragma once

#include "oracle/support/Random.hpp"
#include "oracle/support/World.hpp"

namespace quenlith::oracle {

/// Returns the services for one case: up to three parsers of each family with any rule of answers,
/// sometimes with results that are not new nodes, with exceptions, or without a default parser.
WorldPlan randomPlan(Random& random);

/// Like `randomPlan`, but mostly the default parser alone, as in a host without extensions.
WorldPlan randomPlainPlan(Random& random);

}  // namespace quenlith::oracle

#pragma once

#include "oracle/support/Random.hpp"
#include "oracle/support/World.hpp"

namespace quenlith::oracle {

/// Returns the services for one case: any number of parsers with any way of answering, now and
/// then with results that are no fresh node, with failures, without a default parser.
WorldPlan randomPlan(Random& random);

/// Like `randomPlan`, but mostly the default parser alone, as a host without extensions has it.
WorldPlan randomPlainPlan(Random& random);

}  // namespace quenlith::oracle

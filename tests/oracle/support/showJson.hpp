#pragma once

#include <string>

#include "oracle/support/NodeRecord.hpp"

namespace quenlith::oracle {

/// Returns `data` on one line, with the kind of each value, so that different maps look different.
std::string showJson(const JsonMap& data);

}  // namespace quenlith::oracle

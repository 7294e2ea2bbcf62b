#pragma once

#include <cstdint>

namespace tessera::session {

/// Returns a block version that no other snippet of this process has: sessions may share parsers.
/// Not 0. Thread-safe.
std::uint64_t nextBlockVersion() noexcept;

}  // namespace tessera::session

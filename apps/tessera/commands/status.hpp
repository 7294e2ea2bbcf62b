#pragma once

namespace tessera::commands {

// The exit statuses of the program.
inline constexpr int kFine = 0;
inline constexpr int kFailuresFound = 1;
inline constexpr int kUnusable = 2;
inline constexpr int kInputsFailed = 3;

}  // namespace tessera::commands

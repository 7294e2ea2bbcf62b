#pragma once

namespace tessera::commands {

// The exit statuses of the program.
inline constexpr int kFine = 0;
/// `check` found something at or above `--fail-on`, and could read and parse all inputs.
inline constexpr int kFailuresFound = 1;
/// The command line, a bundle or the output is not usable.
inline constexpr int kUnusable = 2;
/// Some inputs could not be read or parsed, whatever `check` found in the others; everything else
/// was written.
inline constexpr int kInputsFailed = 3;

}  // namespace tessera::commands

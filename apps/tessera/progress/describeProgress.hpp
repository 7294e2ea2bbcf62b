#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace tessera::progress {

/// How far a run is.
struct Figures {
  std::uint64_t filesDone = 0;
  std::uint64_t files = 0;
  std::uint64_t bytesDone = 0;
  /// Nothing while it is not known.
  std::optional<std::uint64_t> bytes;
  std::chrono::milliseconds elapsed{0};
};

/// Returns `figures` as a line of at most `columns` columns, without those that do not fit:
/// " 37 %  37,012 of 100,000 files  420 MB of 1.1 GB  38 MB/s  18 s left". Files are counted only
/// if there are several; where no file has a size, the time is given.
std::string describeProgress(const Figures& figures, std::size_t columns);

/// Returns what a run has done: "100,000 files, 1.1 GB in 29 s, 38 MB/s".
std::string describeEnd(const Figures& figures);

}  // namespace tessera::progress

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tessera/check/catalogue/CheckedFile.hpp"
#include "tessera/diagnostics/Problem.hpp"

namespace tessera::check::transfer {

/// What came of checking a file. A process that checks files sends it to the one that writes the
/// report.
struct CheckResult {
  /// Why the file cannot be used or fixed; the user was told.
  std::vector<diagnostics::Problem> problems;
  /// Nothing if the file cannot be used.
  std::optional<catalogue::CheckedFile> file;
  /// The fixes as a difference in the unified format.
  std::string difference;
};

/// Returns `result` as bytes, for this program only. Of the lines of the file only those are kept
/// that its diagnostics refer to.
std::string encode(const CheckResult& result);

/// Returns the result that `encode` made `bytes` from.
CheckResult decode(std::string_view bytes);

}  // namespace tessera::check::transfer

#pragma once

#include "tessera/check/catalogue/CheckedFile.hpp"
#include "tessera/diagnostics/Problem.hpp"

namespace tessera::reports {

/// Writes the diagnostics of files, one file after the other.
class CheckReport {
 public:
  CheckReport() = default;
  virtual ~CheckReport() = default;
  CheckReport(const CheckReport&) = delete;
  CheckReport& operator=(const CheckReport&) = delete;

  /// Writes the diagnostics of one file. Throws OutputError.
  virtual void write(const check::catalogue::CheckedFile& file) = 0;

  /// Notes that a file could not be checked, for formats that say so. The problem is on standard
  /// error, too.
  virtual void addProblem(const diagnostics::Problem& /*problem*/) {}

  /// Ends the report; call it once, after the last file. Throws OutputError.
  virtual void finish() = 0;
};

}  // namespace tessera::reports

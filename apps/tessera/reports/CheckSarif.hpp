#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/files/OutputText.hpp"
#include "tessera/reports/CheckReport.hpp"

namespace tessera::reports {

/// Writes the diagnostics of all files as one SARIF 2.1.0 log with one run.
///
/// Keeps to the limits that code-scanning services publish: beyond 25,000 results, warnings and
/// then later failures are left out, and beyond 100 related locations of a result the others are.
/// The log says how many results are left out. The log is written at the end.
class CheckSarif : public CheckReport {
 public:
  /// Borrows `output`.
  explicit CheckSarif(files::OutputText& output) : output(output) {}

  void write(const check::catalogue::CheckedFile& file) override;
  void addProblem(const diagnostics::Problem& problem) override;
  void finish() override;

 private:
  void add(const std::string& result, check::catalogue::Severity severity);

  files::OutputText& output;
  // Each as JSON; empty for a warning that a failure has displaced.
  std::vector<std::string> results;
  // The places of the warnings in `results`.
  std::vector<std::size_t> warnings;
  std::size_t resultCount = 0;
  std::size_t leftOut = 0;
  // Each as JSON.
  std::vector<std::string> notifications;
  std::size_t problemCount = 0;
};

}  // namespace tessera::reports

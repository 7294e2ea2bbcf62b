#pragma once

#include "tessera/files/OutputFile.hpp"
#include "tessera/reports/CheckReport.hpp"

namespace tessera::reports {

/// Writes diagnostics as text: "file:line:column: severity: message [id]", and a line "note:" for
/// each second place.
class TextReport : public CheckReport {
 public:
  /// Borrows `output`.
  explicit TextReport(files::OutputFile& output) : output(output) {}

  void write(const check::catalogue::CheckedFile& file) override;
  void finish() override { output.flush(); }

 private:
  files::OutputFile& output;
};

}  // namespace tessera::reports

#pragma once

#include "tessera/files/OutputFile.hpp"
#include "tessera/reports/CheckReport.hpp"
#include "tessera/terminal/Excerpt.hpp"

namespace tessera::reports {

/// Writes diagnostics as text: "file:line:column: severity: message [id]" and the line with a caret
/// below the place. Other places follow as notes in the same form, the first five of them.
class TextReport : public CheckReport {
 public:
  /// Borrows `output`.
  TextReport(files::OutputFile& output, terminal::Style style) : output(output), style(style) {}

  void write(const check::catalogue::CheckedFile& file) override;
  void finish() override { output.flush(); }

 private:
  void writeDiagnostic(const check::catalogue::CheckedFile& file,
                       const check::catalogue::Diagnostic& diagnostic);
  void writeNotes(const check::catalogue::CheckedFile& file,
                  const check::catalogue::Diagnostic& diagnostic);

  files::OutputFile& output;
  terminal::Style style;
};

}  // namespace tessera::reports

#pragma once

#include <cstddef>

#include "tessera/files/OutputText.hpp"
#include "tessera/reports/CheckReport.hpp"
#include "tessera/terminal/Excerpt.hpp"

namespace tessera::reports {

/// Writes diagnostics as text: "file:line:column: severity: message [id]" and the line with a caret
/// below the place. Other places follow as notes in the same form, the first five of them. On a
/// terminal, messages are broken between words, and a last row counts what was found.
class TextReport : public CheckReport {
 public:
  /// Borrows `output`.
  TextReport(files::OutputText& output, terminal::Style style) : output(output), style(style) {}

  void write(const check::catalogue::CheckedFile& file) override;
  void finish() override;

 private:
  void writeDiagnostic(const check::catalogue::CheckedFile& file,
                       const check::catalogue::Diagnostic& diagnostic);
  void writeNotes(const check::catalogue::CheckedFile& file,
                  const check::catalogue::Diagnostic& diagnostic);

  void writeSummary();

  files::OutputText& output;
  terminal::Style style;
  std::size_t failureCount = 0;
  std::size_t warningCount = 0;
  std::size_t fixCount = 0;
};

}  // namespace tessera::reports

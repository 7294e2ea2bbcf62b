#pragma once

#include "foundation/json/Writer.hpp"
#include "tessera/files/OutputText.hpp"
#include "tessera/reports/CheckReport.hpp"

namespace tessera::reports {

/// Writes the diagnostics of each file as one JSON object on a line.
class CheckJson : public CheckReport {
 public:
  /// Borrows `output`.
  explicit CheckJson(files::OutputText& output)
      : output(output), json(output.text(), foundation::json::Form::kCompact) {}

  void write(const check::catalogue::CheckedFile& file) override;
  void finish() override { output.flush(); }

 private:
  using CheckedFile = check::catalogue::CheckedFile;

  void writeDiagnostic(const CheckedFile& file, const check::catalogue::Diagnostic& diagnostic);
  void writeNote(const CheckedFile& file, const check::catalogue::Diagnostic& diagnostic,
                 const check::catalogue::Note& note);
  void writeFix(const CheckedFile& file, const check::catalogue::Diagnostic& diagnostic);
  void writeSpan(const CheckedFile& file, const check::catalogue::Span& span);

  files::OutputText& output;
  foundation::json::Writer json;
};

}  // namespace tessera::reports

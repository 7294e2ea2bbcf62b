#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tessera/check/HeldFiles.hpp"
#include "tessera/check/transfer/CheckResult.hpp"
#include "tessera/commands/Options.hpp"
#include "tessera/commands/status.hpp"
#include "tessera/files/OutputFile.hpp"
#include "tessera/inputs/Input.hpp"
#include "tessera/reports/CheckReport.hpp"
#include "tessera/terminal/Excerpt.hpp"
#include "tessera/workers/Collector.hpp"

namespace tessera::commands {

/// Writes the report of checked files, and keeps the exit status of the run.
class CheckCollector final : public workers::Collector {
 public:
  /// Borrows `options`, `inputs` and `output`. `style` is that of text.
  CheckCollector(const CheckOptions& options, const std::vector<inputs::Input>& inputs,
                 files::OutputFile& output, const terminal::Style& style);

  // Operations throw OutputError.
  void addText(std::string_view piece) override { encoded += piece; }
  /// The output of earlier files comes before the message.
  void addMessage(std::string_view message) override;
  void endInput(std::size_t index, workers::Outcome outcome) override;
  void rest() override { output.flush(); }
  void loseInput(std::size_t index, const workers::Loss& loss) override;

  /// Ends the report; call it once, after the last input.
  void finish();
  int status() const noexcept { return exitStatus; }

 private:
  void addProblem(const diagnostics::Problem& problem);
  void take(const check::catalogue::CheckedFile& file);
  void writeDifference(const std::string& difference);

  const CheckOptions& options;
  const std::vector<inputs::Input>& inputs;
  files::OutputFile& output;
  terminal::Style style;
  std::unique_ptr<reports::CheckReport> report;
  check::HeldFiles files;
  // The result of the current input, as far as it has come.
  std::string encoded;
  int exitStatus = kFine;
};

}  // namespace tessera::commands

#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "tessera/commands/Options.hpp"
#include "tessera/commands/status.hpp"
#include "tessera/files/OutputFile.hpp"
#include "tessera/inputs/Input.hpp"
#include "tessera/workers/Collector.hpp"

namespace tessera::commands {

/// Writes the documents of parsed files in their order, and keeps the exit status of the run.
class ParseCollector final : public workers::Collector, public workers::Messages {
 public:
  /// Borrows all.
  ParseCollector(const ParseOptions& options, const std::vector<inputs::Input>& inputs,
                 files::OutputFile& output)
      : options(options), inputs(inputs), output(output) {}

  int status() const noexcept { return exitStatus; }

  // Operations throw OutputError.
  void addText(std::string_view piece) override;
  void rest() override { output.flush(); }
  void addMessage(std::string_view message) override { report(message); }
  void endInput(std::size_t index, workers::Outcome outcome) override;
  /// Throws OutputError when a part of the document was written and cannot be taken back.
  void loseInput(std::size_t index, const workers::Loss& loss) override;

  /// The output of earlier files comes before the message.
  void report(std::string_view message) override;

 private:
  const ParseOptions& options;
  const std::vector<inputs::Input>& inputs;
  files::OutputFile& output;
  int exitStatus = kFine;
  // How many bytes of the current input were written.
  std::uint64_t writtenBytes = 0;
};

}  // namespace tessera::commands

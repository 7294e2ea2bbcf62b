#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/OutputFile.hpp"
#include "tessera/inputs/Input.hpp"
#include "tessera/workers/Collector.hpp"

namespace tessera::run {

/// Writes the texts of inputs in their order.
class TextCollector final : public workers::Collector {
 public:
  /// What is written about an input whose worker was lost.
  struct LossText {
    /// What could not be done, for example "no document could be made".
    std::string what;
    /// Appends the record of an input that has no other one; may be empty.
    std::function<void(std::string& text, const diagnostics::Problem& problem)> appendRecord;
  };

  /// Borrows all but `lossText`. `separator` is written between the texts of inputs that have one.
  TextCollector(const std::vector<inputs::Input>& inputs, files::OutputFile& output,
                LossText lossText, std::string_view separator = {});

  /// Whether an input could not be used.
  bool hasFailed() const noexcept { return failed; }

  // Operations throw OutputError.
  /// `piece` is not empty.
  void addText(std::string_view piece) override;
  /// The output of earlier inputs comes before the message.
  void addMessage(std::string_view message) override;
  void endInput(std::size_t index, workers::Outcome outcome) override;
  void rest() override { output.flush(); }
  /// Throws OutputError when a part of the text was written and cannot be taken back.
  void loseInput(std::size_t index, const workers::Loss& loss) override;

 private:
  const std::vector<inputs::Input>& inputs;
  files::OutputFile& output;
  LossText lossText;
  std::string_view separator;
  // Whether an earlier input has a text.
  bool hasText = false;
  bool failed = false;
  // How many bytes of the current input were written, with the separator before it.
  std::uint64_t writtenBytes = 0;
};

/// Returns what to tell the user about the input `file`, whose worker was lost: `what` could not be
/// done.
diagnostics::Problem problemOf(const std::string& file, const std::string& what,
                               const workers::Loss& loss);

}  // namespace tessera::run

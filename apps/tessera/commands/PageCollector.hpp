#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "tessera/check/HeldFiles.hpp"
#include "tessera/commands/status.hpp"
#include "tessera/files/OutputFile.hpp"
#include "tessera/files/SpoolFile.hpp"
#include "tessera/html/Page.hpp"
#include "tessera/inputs/Input.hpp"
#include "tessera/workers/Collector.hpp"

namespace tessera::commands {

/// Writes the page of parsed files. What comes first on the page is known last: the sections wait
/// in a temporary file.
class PageCollector final : public workers::Collector {
 public:
  /// Borrows `inputs` and `output`. Throws OutputError.
  PageCollector(const std::vector<inputs::Input>& inputs, files::OutputFile& output,
                html::PageUse use);

  // Operations throw OutputError.
  void addText(std::string_view piece) override;
  void addMessage(std::string_view message) override;
  void endInput(std::size_t index, workers::Outcome outcome) override;
  void rest() override {}
  void loseInput(std::size_t index, const workers::Loss& loss) override;

  /// Writes the page; call it once, after the last input.
  void finish();
  int status() const noexcept { return exitStatus; }

 private:
  void addSectionText(std::string_view piece);
  void addProblem(std::size_t index, const diagnostics::Problem& problem);
  void take(const check::catalogue::CheckedFile& file);
  void copyList();
  void copySections();

  const std::vector<inputs::Input>& inputs;
  files::OutputFile& output;
  html::PageUse use;
  files::SpoolFile sections;
  files::SpoolFile list;
  html::PageSummary summary;
  check::HeldFiles heldFiles;
  // The entries of the files that are held, by their index in the summary.
  std::deque<std::size_t> heldEntries;
  // The deferred diagnostics of the sections, in order.
  std::vector<std::string> deferred;
  // The head of the current input, as far as it has come, and the bytes of its section.
  std::string head;
  std::uint64_t sectionBytes = 0;
  int exitStatus = kFine;
};

}  // namespace tessera::commands

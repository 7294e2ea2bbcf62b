#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tessera/commands/Options.hpp"
#include "tessera/formats/DocumentWriter.hpp"
#include "tessera/run/FileJob.hpp"
#include "tessera/tree/TreeStyle.hpp"

namespace tessera::commands {

/// Parses files and writes their documents.
class ParseJob final : public run::FileJob {
 public:
  /// Borrows all; `recording` may be null. `style` is that of trees. Throws ProblemError when the
  /// services cannot be used.
  ParseJob(const ParseOptions& options, const tree::TreeStyle& style,
           const std::vector<inputs::Input>& inputs, session::Recording* recording,
           const workers::JobContext& context);

 private:
  void work(const std::string& path) override;
  void addProblem(const diagnostics::Problem& problem) override;

  const ParseOptions& options;
  progress::Stage writing;
  std::unique_ptr<formats::DocumentWriter> writer;
};

/// Appends the record that `problem` gives, if the format has records of files without a document.
void appendProblem(std::string& text, const ParseOptions& options,
                   const diagnostics::Problem& problem);

}  // namespace tessera::commands

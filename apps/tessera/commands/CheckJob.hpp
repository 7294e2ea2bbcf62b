#pragma once

#include <string>
#include <vector>

#include "tessera/check/transfer/CheckResult.hpp"
#include "tessera/commands/Options.hpp"
#include "tessera/run/FileJob.hpp"

namespace tessera::commands {

/// Checks files and, if asked to, fixes them. The text of a file is its encoded CheckResult.
class CheckJob final : public run::FileJob {
 public:
  /// Borrows all. Throws ProblemError when the services cannot be used.
  CheckJob(const CheckOptions& options, const std::vector<inputs::Input>& inputs,
           const workers::JobContext& context);

 private:
  void work(const std::string& path) override;
  void addProblem(const diagnostics::Problem& problem) override;

  check::transfer::CheckResult resultOf(const std::string& path);
  check::catalogue::CheckedFile check(session::ParsedFile file, const std::string& path);
  check::transfer::CheckResult fix(const std::string& path);

  const CheckOptions& options;
};

}  // namespace tessera::commands

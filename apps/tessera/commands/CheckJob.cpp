#include "tessera/commands/CheckJob.hpp"

#include <cstddef>
#include <utility>

#include "tessera/check/checkFile.hpp"
#include "tessera/check/fixes/FixedText.hpp"
#include "tessera/check/fixes/fixText.hpp"
#include "tessera/diagnostics/terminalText.hpp"
#include "tessera/files/RewritableFile.hpp"
#include "tessera/inputs/openInput.hpp"

namespace tessera::commands {

using check::catalogue::CheckedFile;
using check::transfer::CheckResult;

namespace {

std::string describeFixes(const std::string& path, std::size_t count) {
  return diagnostics::terminalText(path) + ": " + std::to_string(count) +
         (count == 1 ? " fix made" : " fixes made");
}

}  // namespace

CheckJob::CheckJob(const CheckOptions& options, const std::vector<inputs::Input>& inputs,
                   const workers::JobContext& context)
    : FileJob({.bundles = options.bundles, .pieces = options.pieces}, inputs, context),
      options(options) {}

void CheckJob::work(const std::string& path) {
  output().text() +=
      loseWithoutMemory(path, [&] { return check::transfer::encode(resultOf(path)); });
}

void CheckJob::addProblem(const diagnostics::Problem& problem) {
  output().text() += check::transfer::encode({.problems = {problem}, .file = {}, .difference = {}});
}

CheckResult CheckJob::resultOf(const std::string& path) {
  if (options.fixes != Fixes::kNone) return fix(path);
  return {.problems = {}, .file = check(parse(path), path), .difference = {}};
}

CheckedFile CheckJob::check(session::ParsedFile file, const std::string& path) {
  return check::checkFile(path, std::move(file), [this](const quenlith::syntax::Marker& marker) {
    return isAccepted(marker);
  });
}

/// Fixes a file, or shows how. If it may not be replaced, its diagnostics are those before the
/// fixes.
CheckResult CheckJob::fix(const std::string& path) {
  if (input().isFound) {
    files::FileReader reader = inputs::openInput(input());
    skipIfLeftOut(reader);
  }
  // A folder in which the file was found may have become a symbolic link meanwhile.
  files::RewritableFile file = input().isFound ? files::RewritableFile(path, input().namedBytes)
                                               : files::RewritableFile(path);
  const auto checkBytes = [&](const std::string& bytes) { return check(parse(path, bytes), path); };
  check::fixes::FixedText text(file.bytes());
  check::fixes::FixResult fixed = check::fixes::fixText(text, checkBytes);
  CheckResult result{.problems = {}, .file = std::move(fixed.checked), .difference = {}};
  if (options.fixes == Fixes::kShown) {
    result.difference = text.diff(path);
  } else if (fixed.count != 0) {
    try {
      file.replace(text.bytes());
      messages().report(describeFixes(path, fixed.count));
    } catch (const diagnostics::ProblemError& error) {
      messages().report(error.what());
      result.problems.push_back(error.problem());
      result.file = checkBytes(file.bytes());
    }
  }
  return result;
}

}  // namespace tessera::commands

#include "tessera/run/FileJob.hpp"

#include <sys/stat.h>

#include <algorithm>

#include "tessera/diagnostics/describeException.hpp"
#include "tessera/inputs/listInputs.hpp"
#include "tessera/inputs/openInput.hpp"
#include "tessera/source/SourceText.hpp"

namespace tessera::run {
namespace {

/// The file is left out.
struct LeftOutFile {};

}  // namespace

FileJob::FileJob(const ParserSetup& setup, const std::vector<inputs::Input>& inputs,
                 const workers::JobContext& context)
    : inputs(inputs),
      text(context.output),
      messageTarget(context.messages),
      host(setup.bundles, setup.pieces),
      isRecorded(setup.recording != nullptr),
      log(setup.keepsRecords ? std::make_unique<session::LogCollector>() : nullptr),
      session(host.snippetParsers(), log.get(), setup.recording),
      parser(session, host.appendix(), setup.recording) {
  session.showIn({&context.progress, 0, setup.parsingShare});
  if (setup.sparesPlainLines) session.sparePlainLines();
}

workers::Outcome FileJob::run(std::size_t index) {
  const inputs::Input& input = inputs[index];
  current = index;
  // The lookup emits a record, which must not depend on what this process did before. A recorded
  // run has one process, and its replay has the lookup in the first line.
  if (log != nullptr && !isRecorded && !input.isFirst) host.findLineParsers();
  try {
    work(input.path);
    return workers::Outcome::kDone;
  } catch (const LeftOutFile&) {
    return workers::Outcome::kSkipped;
  } catch (const diagnostics::OutputError&) {
    throw;
  } catch (const diagnostics::ProblemError& error) {
    messageTarget.report(error.what());
    addProblem(error.problem());
    return workers::Outcome::kFailed;
  }
}

bool FileJob::isRepeatable(std::size_t index) const {
  const inputs::Input& input = inputs[index];
  if (input.isFound) return true;
  struct stat status;
  return input.path != "-" && ::stat(input.path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

session::ParsedFile FileJob::parse(const std::string& path) {
  files::FileReader file = inputs::openInput(input());
  skipIfLeftOut(file);
  return parser.parse(path, source::readSource(file));
}

session::ParsedFile FileJob::parse(const std::string& path, std::string_view bytes) {
  return parser.parse(path, source::decodeSource(path, bytes));
}

void FileJob::skipIfLeftOut(files::FileReader& file) const {
  if (input().mayBeLeftOut() && inputs::isLeftOut(file, streams)) throw LeftOutFile();
}

bool FileJob::isAccepted(const quenlith::syntax::Marker& marker) {
  if (!elementParsers) elementParsers = host.codeElementParsers();
  try {
    return std::ranges::any_of(*elementParsers,
                               [&marker](const auto& taker) { return taker->canParse(marker); });
  } catch (const std::bad_alloc&) {
    throw;
  } catch (...) {
    throw diagnostics::ProblemError({.file = input().path,
                                     .place = {},
                                     .what = "a parser threw when it was asked about a marker: " +
                                             diagnostics::describeException(),
                                     .remedy = "leave out bundles, or report it"});
  }
}

void FileJob::failWithoutMemory(const std::string& path) {
  throw diagnostics::ProblemError({.file = path,
                                   .place = {},
                                   .what = "there is not enough memory for this file",
                                   .remedy = "run fewer workers (-j), or split the file"});
}

void FileJob::failAsTooLarge(const std::string& path) {
  throw diagnostics::ProblemError(
      {.file = path, .place = {}, .what = "this file is too large", .remedy = "split the file"});
}

}  // namespace tessera::run

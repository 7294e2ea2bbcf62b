#include "tessera/commands/check.hpp"

#include <unistd.h>

#include <algorithm>
#include <memory>

#include "tessera/check/HeldFiles.hpp"
#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/checkFile.hpp"
#include "tessera/commands/status.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/diagnostics/report.hpp"
#include "tessera/files/OutputFile.hpp"
#include "tessera/host/ServiceHost.hpp"
#include "tessera/reports/CheckJson.hpp"
#include "tessera/reports/CheckSarif.hpp"
#include "tessera/reports/TextReport.hpp"
#include "tessera/session/FileParser.hpp"
#include "tessera/terminal/settings.hpp"

namespace tessera::commands {
namespace {

using check::catalogue::CheckedFile;
using check::catalogue::Diagnostic;
using check::catalogue::Severity;
using quenlith::syntax::Marker;

std::unique_ptr<reports::CheckReport> makeReport(const CheckOptions& options,
                                                 files::OutputFile& output) {
  if (options.format == CheckFormat::kJson) return std::make_unique<reports::CheckJson>(output);
  if (options.format == CheckFormat::kSarif) return std::make_unique<reports::CheckSarif>(output);
  const terminal::Style style{.color = terminal::wantsColor(options.color, STDOUT_FILENO),
                              .columns = terminal::columnsOf(STDOUT_FILENO)};
  return std::make_unique<reports::TextReport>(output, style);
}

bool mustFail(const CheckedFile& file, FailOn failOn) {
  if (failOn == FailOn::kNever) return false;
  if (failOn == FailOn::kWarning) return !file.diagnostics.empty();
  return std::ranges::any_of(file.diagnostics, [](const Diagnostic& diagnostic) {
    return check::catalogue::severityOf(diagnostic) == Severity::kFailure;
  });
}

}  // namespace

int check(const CheckOptions& options) {
  host::ServiceHost host(options.bundles, options.pieces);
  session::SnippetSession session(host.snippetParsers(), nullptr, nullptr);
  session::FileParser parser(session, host.appendix(), nullptr);
  const auto isAccepted = [parsers = host.codeElementParsers()](const Marker& marker) {
    return std::ranges::any_of(parsers,
                               [&marker](const auto& taker) { return taker->canParse(marker); });
  };
  files::OutputFile standardOutput(STDOUT_FILENO, "standard output");
  const auto report = makeReport(options, standardOutput);
  int status = kFine;
  check::HeldFiles files([&](const CheckedFile& file) {
    if (mustFail(file, options.failOn)) status = std::max(status, kFailuresFound);
    report->write(file);
  });
  for (const std::string& name : options.files) {
    try {
      files.add(check::checkFile(name, parser.parse(name), isAccepted));
    } catch (const diagnostics::OutputError&) {
      throw;
    } catch (const diagnostics::ProblemError& error) {
      diagnostics::report(error.what());
      report->addProblem(error.problem());
      status = kInputsFailed;
    }
  }
  files.finish();
  report->finish();
  return status;
}

}  // namespace tessera::commands

#include "tessera/commands/check.hpp"

#include <unistd.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tessera/check/HeldFiles.hpp"
#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/checkFile.hpp"
#include "tessera/check/fixes/FixedText.hpp"
#include "tessera/check/fixes/fixText.hpp"
#include "tessera/commands/status.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/diagnostics/report.hpp"
#include "tessera/diagnostics/terminalText.hpp"
#include "tessera/files/OutputFile.hpp"
#include "tessera/files/RewritableFile.hpp"
#include "tessera/host/ServiceHost.hpp"
#include "tessera/inputs/listInputs.hpp"
#include "tessera/reports/CheckJson.hpp"
#include "tessera/reports/CheckSarif.hpp"
#include "tessera/reports/TextReport.hpp"
#include "tessera/session/FileParser.hpp"
#include "tessera/source/SourceText.hpp"
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
                              .columns = terminal::columnsOf(STDOUT_FILENO),
                              .isTerminal = ::isatty(STDOUT_FILENO) != 0};
  return std::make_unique<reports::TextReport>(output, style);
}

bool mustFail(const CheckedFile& file, FailOn failOn) {
  if (failOn == FailOn::kNever) return false;
  if (failOn == FailOn::kWarning) return !file.diagnostics.empty();
  return std::ranges::any_of(file.diagnostics, [](const Diagnostic& diagnostic) {
    return check::catalogue::severityOf(diagnostic) == Severity::kFailure;
  });
}

/// Checks the files of a run and, if asked to, fixes them.
class CheckRun {
 public:
  explicit CheckRun(const CheckOptions& options)
      : options(options),
        host(options.bundles, options.pieces),
        session(host.snippetParsers(), nullptr, nullptr),
        parser(session, host.appendix(), nullptr),
        parsers(host.codeElementParsers()),
        output(STDOUT_FILENO, "standard output"),
        report(makeReport(options, output)),
        files([this](const CheckedFile& file) { take(file); }) {}

  int run() {
    const auto inputs = inputs::listInputs(options.inputs, inputs::BinaryFiles::kLeftOut);
    for (const auto& [name, isFound] : inputs) {
      try {
        files.add(options.fixes == Fixes::kNone ? check(parser.parse(name), name) : fix(name));
      } catch (const diagnostics::OutputError&) {
        throw;
      } catch (const diagnostics::ProblemError& error) {
        reportProblem(error);
      }
    }
    files.finish();
    if (options.fixes == Fixes::kShown) {
      output.flush();
    } else {
      report->finish();
    }
    return status;
  }

 private:
  CheckedFile check(session::ParsedFile file, const std::string& name) {
    return check::checkFile(name, std::move(file), [this](const Marker& marker) {
      return std::ranges::any_of(parsers,
                                 [&marker](const auto& taker) { return taker->canParse(marker); });
    });
  }

  /// Fixes a file, or shows how. If it may not be replaced, its diagnostics are those before the
  /// fixes.
  CheckedFile fix(const std::string& name) {
    files::RewritableFile file(name);
    const auto checkBytes = [&](const std::string& bytes) {
      return check(parser.parse(name, source::decodeSource(name, bytes)), name);
    };
    check::fixes::FixedText text(file.bytes());
    check::fixes::FixResult fixed = check::fixes::fixText(text, checkBytes);
    if (options.fixes == Fixes::kShown) {
      showDifference(text.diff(name));
    } else if (fixed.count != 0) {
      try {
        file.replace(text.bytes());
        reportFixed(name, fixed.count);
      } catch (const diagnostics::ProblemError& error) {
        reportProblem(error);
        return checkBytes(file.bytes());
      }
    }
    return std::move(fixed.checked);
  }

  /// A terminal gets no control characters; `patch` gets the text as it is.
  void showDifference(const std::string& difference) {
    if (::isatty(STDOUT_FILENO) == 0) {
      output.text() += difference;
    } else {
      std::istringstream lines(difference);
      for (std::string line; std::getline(lines, line);) {
        output.text() += diagnostics::terminalText(line) + '\n';
      }
    }
    output.flushIfLarge();
  }

  static void reportFixed(const std::string& name, std::size_t count) {
    diagnostics::report(diagnostics::terminalText(name) + ": " + std::to_string(count) +
                        (count == 1 ? " fix made" : " fixes made"));
  }

  void reportProblem(const diagnostics::ProblemError& error) {
    diagnostics::report(error.what());
    report->addProblem(error.problem());
    status = kInputsFailed;
  }

  void take(const CheckedFile& file) {
    if (mustFail(file, options.failOn)) status = std::max(status, kFailuresFound);
    if (options.fixes != Fixes::kShown) report->write(file);
  }

  const CheckOptions& options;
  host::ServiceHost host;
  session::SnippetSession session;
  session::FileParser parser;
  std::vector<std::shared_ptr<quenlith::build::markup::code::CodeElementParser>> parsers;
  files::OutputFile output;
  std::unique_ptr<reports::CheckReport> report;
  check::HeldFiles files;
  int status = kFine;
};

}  // namespace

int check(const CheckOptions& options) {
  if (options.fixes != Fixes::kNone &&
      std::ranges::find(options.inputs.paths, "-") != options.inputs.paths.end()) {
    throw diagnostics::ProblemError({.file = "-",
                                     .place = {},
                                     .what = "standard input cannot be fixed",
                                     .remedy = "name a file, or check it without --fix"});
  }
  return CheckRun(options).run();
}

}  // namespace tessera::commands

#include "tessera/commands/markers.hpp"

#include <unistd.h>

#include <algorithm>

#include "tessera/check/listing/listMarkers.hpp"
#include "tessera/commands/status.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/diagnostics/report.hpp"
#include "tessera/files/OutputFile.hpp"
#include "tessera/host/ServiceHost.hpp"
#include "tessera/inputs/listInputs.hpp"
#include "tessera/reports/MarkerReport.hpp"
#include "tessera/session/FileParser.hpp"

namespace tessera::commands {

int markers(const MarkersOptions& options) {
  host::ServiceHost host(options.bundles, options.pieces);
  session::SnippetSession session(host.snippetParsers(), nullptr, nullptr);
  session::FileParser parser(session, host.appendix(), nullptr);
  const auto isAccepted = [parsers = host.codeElementParsers()](const auto& marker) {
    return std::ranges::any_of(parsers, [&](const auto& taker) { return taker->canParse(marker); });
  };
  const auto append = options.format == MarkersFormat::kJson ? &reports::appendMarkerJson
                                                             : &reports::appendMarkerRows;
  files::OutputFile output(STDOUT_FILENO, "standard output");
  int status = kFine;
  const auto inputs = inputs::listInputs(options.inputs, inputs::BinaryFiles::kLeftOut);
  for (const auto& [name, isFound] : inputs) {
    try {
      append(output.text(), check::listing::listMarkers(name, parser.parse(name), isAccepted));
    } catch (const diagnostics::ProblemError& error) {
      diagnostics::report(error.what());
      status = kInputsFailed;
    }
    output.flush();
  }
  return status;
}

}  // namespace tessera::commands

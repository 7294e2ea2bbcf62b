#include "tessera/commands/explain.hpp"

#include <unistd.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/catalogue/describeEntry.hpp"
#include "tessera/commandline/suggest.hpp"
#include "tessera/commands/status.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/OutputFile.hpp"

namespace tessera::commands {
namespace {

using namespace check::catalogue;

/// Returns one row per kind: its id, severity and title.
std::string listEntries() {
  std::size_t width = 0;
  for (const CatalogueEntry& entry : catalogue()) width = std::max(width, entry.id.size());
  std::string rows;
  for (const CatalogueEntry& entry : catalogue()) {
    rows.append(entry.id).append(width + 2 - entry.id.size(), ' ');
    rows.append(nameOf(entry.severity)).append("  ").append(entry.title).append("\n");
  }
  return rows;
}

const CatalogueEntry& requireEntry(const std::string& id) {
  if (const CatalogueEntry* entry = findEntry(id)) return *entry;
  std::vector<std::string_view> ids;
  for (const CatalogueEntry& entry : catalogue()) ids.push_back(entry.id);
  throw diagnostics::ProblemError(
      {.file = "tessera",
       .place = {},
       .what = "there is no diagnostic \"" + id + "\"",
       .remedy = commandline::suggest(id, ids) + "\"tessera explain\" lists them"});
}

std::string textOf(const ExplainOptions& options) {
  const bool isMarkdown = options.format == ExplainFormat::kMarkdown;
  if (!options.id) return isMarkdown ? describeCatalogue() : listEntries();
  const CatalogueEntry& entry = requireEntry(*options.id);
  return isMarkdown ? describeAsMarkdown(entry) : describeAsText(entry);
}

}  // namespace

int explain(const ExplainOptions& options) {
  files::OutputFile output(STDOUT_FILENO, "standard output");
  output.text() = textOf(options);
  output.flush();
  return kFine;
}

}  // namespace tessera::commands

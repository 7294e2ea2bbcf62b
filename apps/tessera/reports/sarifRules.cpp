#include "tessera/reports/sarifRules.hpp"

#include <algorithm>
#include <string>
#include <string_view>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/catalogue/describeEntry.hpp"
#include "tessera/reports/sarifResult.hpp"
#include "tessera/reports/writeMember.hpp"

namespace tessera::reports {

using namespace check::catalogue;
using foundation::json::Writer;

namespace {

void writeHelp(Writer& json, const CatalogueEntry& entry) {
  json.key("help");
  json.beginObject();
  writeMember(json, "text", std::string_view(describeAsText(entry)));
  writeMember(json, "markdown", std::string_view(describeAsMarkdown(entry)));
  json.endObject();
}

void writeRule(Writer& json, const CatalogueEntry& entry) {
  json.beginObject();
  writeMember(json, "id", entry.id);
  writeMessage(json, "shortDescription", entry.title);
  std::string explanation(entry.explanation);
  std::ranges::replace(explanation, '\n', ' ');
  writeMessage(json, "fullDescription", explanation);
  writeHelp(json, entry);
  json.key("defaultConfiguration");
  json.beginObject();
  writeMember(json, "level", sarifLevel(entry.severity));
  json.endObject();
  json.endObject();
}

}  // namespace

void writeSarifRules(Writer& json) {
  json.beginArray();
  for (const CatalogueEntry& entry : catalogue()) writeRule(json, entry);
  json.endArray();
}

}  // namespace tessera::reports

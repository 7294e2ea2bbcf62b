#include "tessera/reports/sarifRules.hpp"

#include <algorithm>
#include <string>
#include <string_view>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/catalogue/describeEntry.hpp"
#include "tessera/reports/sarifResult.hpp"

namespace tessera::reports {

using namespace check::catalogue;
using foundation::json::Writer;

namespace {

void writeText(Writer& json, std::string_view key, std::string_view text) {
  json.key(key);
  json.beginObject();
  json.key("text");
  json.text(text);
  json.endObject();
}

void writeHelp(Writer& json, const CatalogueEntry& entry) {
  json.key("help");
  json.beginObject();
  json.key("text");
  json.text(std::string_view(describeAsText(entry)));
  json.key("markdown");
  json.text(std::string_view(describeAsMarkdown(entry)));
  json.endObject();
}

void writeRule(Writer& json, const CatalogueEntry& entry) {
  json.beginObject();
  json.key("id");
  json.text(entry.id);
  writeText(json, "shortDescription", entry.title);
  std::string explanation(entry.explanation);
  std::ranges::replace(explanation, '\n', ' ');
  writeText(json, "fullDescription", explanation);
  writeHelp(json, entry);
  json.key("defaultConfiguration");
  json.beginObject();
  json.key("level");
  json.text(sarifLevel(entry.severity));
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

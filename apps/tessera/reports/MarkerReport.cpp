#include "tessera/reports/MarkerReport.hpp"

#include <cstdint>
#include <string_view>

#include "fl/i18n/ustring.hpp"
#include "foundation/json/Writer.hpp"
#include "tessera/diagnostics/terminalText.hpp"
#include "tessera/formats/DocumentRecord.hpp"
#include "tessera/reports/writeMember.hpp"

namespace tessera::reports {

using check::catalogue::Position;
using check::listing::describe;
using check::listing::ListedFile;
using check::listing::ListedMarker;
using check::listing::MarkerFate;
using foundation::json::Form;
using foundation::json::Writer;

namespace {

std::uint64_t columnOf(const ListedFile& file, const Position& position) {
  return file.lines.countCharactersBefore(position.line, position.unit) + 1;
}

std::string partsOf(const ListedMarker& listed) {
  const auto& marker = listed.marker;
  std::string parts = fl::i18n::ustring_to_utf8(marker.elementView());
  if (!marker.typeView().empty()) parts += ':' + fl::i18n::ustring_to_utf8(marker.typeView());
  parts = diagnostics::terminalText(parts);
  if (!marker.idView().empty()) parts += ' ' + diagnostics::quotedText(marker.idView());
  if (listed.range) {
    const auto& [begin, end] = *listed.range;
    parts += " [" + std::to_string(begin) + ',' + std::to_string(end) + ']';
  }
  if (marker.dataView().empty()) return parts;
  std::string data;
  Writer(data, Form::kCompact).object(marker.dataView());
  return parts + ' ' + diagnostics::terminalText(data);
}

std::string describeFates(const ListedMarker& listed) {
  std::string text;
  for (const MarkerFate fate : listed.fates) {
    if (!text.empty()) text += ", ";
    text += describe(fate);
    if (fate != MarkerFate::kFailure) continue;
    for (const std::u16string& id : listed.failureIds) {
      text += ' ' + diagnostics::terminalText(fl::i18n::ustring_to_utf8(id));
    }
  }
  return text;
}

class MarkerJson {
 public:
  MarkerJson(std::string& text, const ListedFile& file) : json(text, Form::kCompact), file(file) {}

  void write() {
    json.beginObject();
    formats::writeRecordHead(json, file.path);
    json.key("markers");
    json.beginArray();
    for (const ListedMarker& listed : file.markers) writeMarker(listed);
    json.endArray();
    json.endObject();
  }

 private:
  void writeMarker(const ListedMarker& listed) {
    json.beginObject();
    writeMember(json, "line", listed.span.begin.line);
    writeMember(json, "column", columnOf(file, listed.span.begin));
    writeMember(json, "endLine", listed.span.end.line);
    writeMember(json, "endColumn", columnOf(file, listed.span.end));
    writeMember(json, "element", listed.marker.elementView());
    writeMember(json, "type", listed.marker.typeView());
    writeMember(json, "id", listed.marker.idView());
    writeRange(listed);
    json.key("data");
    json.object(listed.marker.dataView());
    json.key("fates");
    json.beginArray();
    for (const MarkerFate fate : listed.fates) json.text(nameOf(fate));
    json.endArray();
    json.key("failures");
    json.beginArray();
    for (const std::u16string& id : listed.failureIds) json.text(std::u16string_view(id));
    json.endArray();
    json.endObject();
  }

  void writeRange(const ListedMarker& listed) {
    json.key("range");
    if (!listed.range) return json.null();
    json.beginArray();
    json.number(listed.range->first);
    json.number(listed.range->second);
    json.endArray();
  }

  Writer json;
  const ListedFile& file;
};

}  // namespace

void appendMarkerRows(std::string& text, const ListedFile& file) {
  const std::string path = diagnostics::terminalText(file.path);
  for (const ListedMarker& listed : file.markers) {
    text += path + ':' + std::to_string(listed.span.begin.line) + ':' +
            std::to_string(columnOf(file, listed.span.begin)) + ": " + partsOf(listed) + ": " +
            describeFates(listed) + '\n';
  }
}

void appendMarkerJson(std::string& text, const ListedFile& file) {
  MarkerJson(text, file).write();
  text += '\n';
}

}  // namespace tessera::reports

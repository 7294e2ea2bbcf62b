#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "apps/tessera/support/WrittenText.hpp"
#include "fl/i18n/ustring.hpp"
#include "fuzz/Choices.hpp"
#include "fuzz/readJson.hpp"
#include "fuzz/require.hpp"
#include "fuzz/targets.hpp"
#include "fuzz/tessera/Workbench.hpp"
#include "tessera/check/listing/listMarkers.hpp"
#include "tessera/check/transfer/CheckResult.hpp"
#include "tessera/formats/DocumentJson.hpp"
#include "tessera/reports/CheckJson.hpp"
#include "tessera/reports/CheckSarif.hpp"
#include "tessera/reports/MarkerReport.hpp"
#include "tessera/reports/TextReport.hpp"
#include "tessera/session/NodeCursor.hpp"
#include "tessera/tree/DocumentTree.hpp"

namespace quenlith::fuzz {

using foundation::json::Array;
using foundation::json::EmptyMembers;
using foundation::json::Form;
using foundation::json::Object;
using foundation::json::Value;
using tessera::check::catalogue::CheckedFile;

namespace {

// Control characters, the separators of lines and paragraphs, and what changes the direction of
// text.
bool isControl(char16_t unit) {
  if (unit == u'\n') return false;
  return unit < 0x20 || (unit >= 0x7F && unit <= 0x9F) || unit == 0x061C ||
         (unit >= 0x200E && unit <= 0x200F) || (unit >= 0x2028 && unit <= 0x202E) ||
         (unit >= 0x2066 && unit <= 0x2069);
}

void checkForTerminal(const std::string& text) {
  const fl::i18n::ustring units = fl::i18n::utf8_to_ustring(text);
  require(fl::i18n::ustring_to_utf8(units) == text, "text for people is UTF-8");
  require(std::ranges::none_of(units, isControl), "no control character reaches a terminal",
          [&] { return text; });
}

Value requireJson(const std::string& text) {
  const bool isEscaped = std::ranges::none_of(fl::i18n::utf8_to_ustring(text), [](char16_t unit) {
    return (unit < 0x20 && unit != u'\n') || (unit >= 0x7F && unit <= 0x9F);
  });
  require(isEscaped, "control characters are escaped in JSON", [&] { return text; });
  const auto value = readJson(text);
  require(value.has_value(), "RapidJSON reads it", [&] { return text; });
  return *value;
}

const Value& member(const Value& object, const char* key) {
  const auto& members = object.get<Object>();
  const auto found = members.find(key);
  require(found != members.end(), key);
  return found->second;
}

std::string textOf(std::u16string_view text) {
  return fl::i18n::ustring_to_utf8(text);
}

// Each node is there with its text and its anchor; the rest is for the schemas.
void checkNodes(const Value& record, const tessera::session::ParsedSnippet& parsed) {
  const auto& nodes = member(record, "nodes").get<Array>();
  tessera::session::NodeCursor cursor(parsed);
  require(nodes.size() == cursor.count(), "every node is written");
  for (const Value& written : nodes) {
    cursor.advance();
    const auto& node = cursor.node();
    require(member(written, "anchorId").get<std::string>() == textOf(node->getAnchorId()),
            "the anchor is written");
    const auto& children = member(written, "children").get<Array>();
    require(children.size() == node->getChildren().size(), "the children are written");
    for (std::size_t i = 0; i < children.size(); ++i) {
      const auto text = document::kdzero::TextNode::castFrom(node->getChildren()[i]);
      if (!text) continue;
      require(member(children[i], "text").get<std::string>() == textOf(text->getText()),
              "the text of a node is written");
    }
    require(
        member(written, "parserFailures").get<Array>().size() == node->getParserFailures().size(),
        "the failures are written");
  }
}

std::string writeDocument(const SourceFile& file, const tessera::session::ParsedSnippet& parsed,
                          tessera::formats::JsonLayout layout) {
  WrittenText output;
  tessera::formats::DocumentJson(output, layout, tessera::formats::Records::kShown)
      .write({file.name, parsed, Workbench::get().parsers()});
  return output.all() + output.text();
}

void checkDocument(const SourceFile& file, const tessera::session::ParsedSnippet& parsed) {
  const std::string compact = writeDocument(file, parsed, {});
  require(compact.find('\n') == compact.size() - 1, "a compact record is one line");
  const Value record = requireJson(compact);
  checkNodes(record, parsed);
  require(requireJson(writeDocument(file, parsed, {.form = Form::kIndented})) == record,
          "the indented record has the same value");
  requireJson(writeDocument(file, parsed, {.emptyMembers = EmptyMembers::kOmitted}));
}

void checkTree(const SourceFile& file, const tessera::session::ParsedSnippet& parsed,
               std::size_t columns) {
  for (const auto symbols : {tessera::tree::Symbols::kAscii, tessera::tree::Symbols::kUnicode}) {
    WrittenText output;
    tessera::tree::DocumentTree(output, {.symbols = symbols, .columns = columns},
                                tessera::formats::Records::kShown)
        .write({file.name, parsed, Workbench::get().parsers()});
    checkForTerminal(output.all() + output.text());
  }
}

template <class Report, class... Options>
std::string reportOf(const CheckedFile& checked, const Options&... options) {
  WrittenText output;
  Report report(output, options...);
  report.write(checked);
  report.finish();
  return output.all() + output.text();
}

void checkReports(const CheckedFile& checked, std::size_t columns) {
  using namespace tessera::reports;
  const Value json = requireJson(reportOf<CheckJson>(checked));
  require(member(json, "diagnostics").get<Array>().size() == checked.diagnostics.size(),
          "every diagnostic is written");
  const Value sarif = requireJson(reportOf<CheckSarif>(checked));
  const Value& run = member(sarif, "runs").get<Array>().front();
  require(member(run, "results").get<Array>().size() == checked.diagnostics.size(),
          "every result is written");
  tessera::terminal::Style style;
  style.columns = columns;
  checkForTerminal(reportOf<TextReport>(checked, style));
  style.isTerminal = true;
  checkForTerminal(reportOf<TextReport>(checked, style));
}

void checkTransfer(CheckedFile checked) {
  using namespace tessera::check::transfer;
  const std::string before = reportOf<tessera::reports::CheckJson>(checked);
  const std::string bytes = encode({.problems = {}, .file = std::move(checked), .difference = {}});
  const CheckResult result = decode(bytes);
  require(result.file && encode(result) == bytes, "what another process checked is sent whole");
  require(reportOf<tessera::reports::CheckJson>(*result.file) == before,
          "what was sent is reported alike");
}

void checkMarkers(const SourceFile& file) {
  Workbench& bench = Workbench::get();
  const auto listed =
      tessera::check::listing::listMarkers(file.name, bench.parse(file), &Workbench::isAccepted);
  std::string rows;
  tessera::reports::appendMarkerRows(rows, listed);
  checkForTerminal(rows);
  std::string json;
  tessera::reports::appendMarkerJson(json, listed);
  require(member(requireJson(json), "markers").get<Array>().size() == listed.markers.size(),
          "every marker is written");
}

}  // namespace

void checkReports(std::string_view input) {
  Choices choices(input);
  const std::size_t columns = choices.byte() + tessera::tree::TreeStyle::kFewestColumns;
  const SourceFile file = readFile(choices);
  Workbench& bench = Workbench::get();
  {
    const auto parsed = bench.parse(file);
    checkDocument(file, parsed.snippet);
    checkTree(file, parsed.snippet, columns);
  }
  CheckedFile checked = bench.check(file);
  checkReports(checked, columns);
  checkTransfer(std::move(checked));
  checkMarkers(file);
}

}  // namespace quenlith::fuzz

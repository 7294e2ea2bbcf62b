#include "hostile/surfaces.hpp"

#include <functional>
#include <string_view>
#include <utility>

#include "apps/tessera/support/WrittenText.hpp"
#include "hostile/Host.hpp"
#include "quenlith/syntax/MarkerCandidate.hpp"
#include "quenlith/syntax/markers.hpp"
#include "tessera/check/checkFile.hpp"
#include "tessera/check/fixes/fixText.hpp"
#include "tessera/check/listing/listMarkers.hpp"
#include "tessera/check/transfer/CheckResult.hpp"
#include "tessera/formats/DocumentJson.hpp"
#include "tessera/html/DiagnosticHtml.hpp"
#include "tessera/html/FileSection.hpp"
#include "tessera/pieces/PieceParser.hpp"
#include "tessera/replay/CommandReader.hpp"
#include "tessera/replay/Replay.hpp"
#include "tessera/reports/CheckJson.hpp"
#include "tessera/reports/CheckSarif.hpp"
#include "tessera/reports/MarkerReport.hpp"
#include "tessera/reports/TextReport.hpp"
#include "tessera/session/FileParser.hpp"
#include "tessera/source/SourceText.hpp"
#include "tessera/tree/DocumentTree.hpp"

namespace hostile {
namespace {

using tessera::check::catalogue::CheckedFile;
using tessera::files::OutputText;
using tessera::session::ParsedFile;

const std::string kName = "f.py";

// Drops what is written.
class Sink final : public OutputText {
 public:
  std::size_t size() { return written + text().size(); }

 private:
  void write(std::string_view piece) override { written += piece.size(); }

  std::size_t written = 0;
};

class Run {
 public:
  explicit Run(const fl::i18n::ustring& text)
      : text(text), bytes(fl::i18n::ustring_to_utf8(text)), session(host.makeSession(nullptr)) {}

  std::map<std::string, Cost> measureAll() {
    measureScanner();
    ParsedFile file;
    add("parse", [&] { file = parse(bytes); });
    add("parse --format json", [&] { writeJson(file); });
    add("parse --format tree", [&] { writeTree(file); });
    measureCheck();
    add("destroy", [&] { file = {}; });
    measureMarkers();
    measureFix();
    measureReplay();
    return std::move(costs);
  }

 private:
  void add(const std::string& name, const std::function<void()>& operation) {
    costs[name] = measure(operation);
  }

  void measureScanner() {
    using namespace quenlith::syntax;
    add("get_markers_from_snippet", [&] { get_markers_from_snippet(text, false); });
    add("get_markers_from_snippet of any element", [&] { get_markers_from_snippet(text, true); });
    add("findDamagedMarkers", [&] { findDamagedMarkers(text); });
    add("findMarkerCandidates", [&] { findMarkerCandidates(text); });
    add("isAppendixLine", [&] { isAppendixLine(text); });
    add("Marker of a text", [&] { Marker marker(text); });
  }

  ParsedFile parse(const std::string& source) {
    return parser.parse(kName, tessera::source::decodeSource(kName, source));
  }

  void writeJson(const ParsedFile& file) {
    Sink output;
    tessera::formats::DocumentJson(output, {}, tessera::formats::Records::kHidden)
        .write({kName, file.snippet, session.parsers()});
  }

  void writeTree(const ParsedFile& file) {
    Sink output;
    tessera::tree::DocumentTree(output, {.columns = 100}, tessera::formats::Records::kHidden)
        .write({kName, file.snippet, session.parsers()});
  }

  static CheckedFile check(ParsedFile file) {
    return tessera::check::checkFile(kName, std::move(file), &isAccepted);
  }

  static bool isAccepted(const quenlith::syntax::Marker& marker) {
    return tessera::pieces::PieceParser().canParse(marker);
  }

  void measureCheck() {
    ParsedFile file = parse(bytes);
    tessera::session::ParsedSnippet document;
    document.document = file.snippet.document;
    document.lines = file.snippet.lines;
    const std::uint64_t appendixLine = file.source.appendixLine;
    CheckedFile checked;
    add("check", [&] { checked = check(std::move(file)); });
    add("check --format text",
        [&] { report<tessera::reports::TextReport>(checked, tessera::terminal::Style{}); });
    add("check --format json", [&] { report<tessera::reports::CheckJson>(checked); });
    add("check --format sarif", [&] { report<tessera::reports::CheckSarif>(checked); });
    add("parse --format html", [&] {
      writePage(
          {.number = 1, .checked = checked, .parsed = document, .appendixLine = appendixLine});
    });
    add("transfer", [&] { checked = transfer(std::move(checked)); });
  }

  template <typename Report, typename... Options>
  static void report(const CheckedFile& checked, Options... options) {
    Sink output;
    Report report(output, options...);
    report.write(checked);
    report.finish();
  }

  static void writePage(const tessera::html::PageFile& file) {
    Sink output;
    const auto counts = tessera::html::countParts(file);
    tessera::html::writeSection(output, file, counts, tessera::html::Unpaired::kWritten);
    tessera::html::HtmlText items(output.text());
    for (std::size_t i = 0; i < file.checked.diagnostics.size(); ++i) {
      tessera::html::addListItem(items, {1, file.checked, i});
    }
  }

  static CheckedFile transfer(CheckedFile checked) {
    using namespace tessera::check::transfer;
    return std::move(
        *decode(encode({.problems = {}, .file = std::move(checked), .difference = {}})).file);
  }

  void measureMarkers() {
    using namespace tessera;
    ParsedFile file = parse(bytes);
    check::listing::ListedFile listed;
    add("markers",
        [&] { listed = check::listing::listMarkers(kName, std::move(file), &isAccepted); });
    add("markers --format text", [&] {
      std::string rows;
      reports::appendMarkerRows(rows, listed);
    });
    add("markers --format json", [&] {
      std::string json;
      reports::appendMarkerJson(json, listed);
    });
  }

  void measureFix() {
    using namespace tessera::check::fixes;
    add("check --fix --dry-run", [&] {
      FixedText fixed(bytes);
      fixText(fixed, [&](const std::string& source) { return check(parse(source)); });
      fixed.diff(kName);
    });
  }

  void measureReplay() {
    WrittenText commands;
    tessera::session::Recording recording(commands);
    auto recorded = host.makeSession(&recording);
    add("parse --record", [&] {
      tessera::session::FileParser(recorded, host.appendix(), &recording)
          .parse(kName, tessera::source::decodeSource(kName, bytes));
    });
    add("replay", [&] { replay(commands.all() + commands.text()); });
  }

  void replay(std::string_view commands) {
    Sink answers;
    tessera::replay::Replay replay(host.makeParsers(), host.appendix(), answers);
    while (!commands.empty()) {
      const auto end = commands.find('\n');
      const auto line = fl::i18n::utf8_to_ustring(commands.substr(0, end));
      replay.run(tessera::replay::CommandReader(line).read());
      commands.remove_prefix(end + 1);
    }
  }

  const fl::i18n::ustring& text;
  std::string bytes;
  Host host;
  tessera::session::SnippetSession session;
  tessera::session::FileParser parser{session, host.appendix(), nullptr};
  std::map<std::string, Cost> costs;
};

}  // namespace

std::map<std::string, Cost> measureAll(const fl::i18n::ustring& text) {
  return Run(text).measureAll();
}

}  // namespace hostile

#include "tessera/formats/DocumentTree.hpp"

#include <algorithm>
#include <vector>

#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "fl/i18n/utf16.hpp"
#include "foundation/json/Writer.hpp"
#include "tessera/diagnostics/terminalText.hpp"
#include "tessera/formats/NodeKind.hpp"
#include "tessera/pieces/PieceNode.hpp"
#include "tessera/session/plainLine.hpp"

namespace tessera::formats {
namespace {

using document::kdzero::LiveAppIntegratedInlineNode;
using document::kdzero::Node;

constexpr std::size_t kNumberWidth = 6;
// Deeper rows are indented no further: the text of a very deep tree would be mostly blanks.
constexpr std::size_t kDeepestIndent = 32;

std::string compactJson(const foundation::json::Object& members) {
  std::string text;
  foundation::json::Writer(text, foundation::json::Form::kCompact).object(members);
  return diagnostics::terminalText(text);
}

/// Appends " name "text"" unless the text is empty.
void appendNamed(std::string& row, std::string_view name, std::u16string_view text) {
  if (text.empty()) return;
  row.append(1, ' ').append(name).append(1, ' ').append(diagnostics::quotedText(text));
}

/// Appends what the marker of a piece says about it.
void appendPiece(std::string& row, const Node& node) {
  const auto* piece = static_cast<const pieces::PieceNode::Impl*>(node.get());
  appendNamed(row, "id", piece->getId());
  appendNamed(row, "type", piece->getType());
  const auto& [begin, end] = piece->getRange();
  row += " range [" + std::to_string(begin) + "," + std::to_string(end) + "]";
  if (!piece->getData().empty()) row += " " + compactJson(piece->getData());
}

std::string describeFailure(const failures::kdzero::ParserFailure& failure) {
  std::string row =
      "failure " + diagnostics::terminalText(fl::i18n::ustring_to_utf8(failure.getFailureId()));
  appendNamed(row, "feature", failure.getMarkerInfo().getFeatureId());
  appendNamed(row, "sub-feature", failure.getMarkerInfo().getSubFeatureId());
  appendNamed(row, "marker", failure.getMarkerInfo().getMarkerId());
  if (!failure.getFailureData().empty()) row += " " + compactJson(failure.getFailureData());
  return row;
}

std::string describeContribution(const contributors::kdzero::NodeContributorData& contribution) {
  std::string row = "data of " + diagnostics::quotedText(contribution->getContributingFeature());
  for (const auto& line : contribution->getLineDataList())
    row += " " + compactJson(line->getData());
  return row;
}

}  // namespace

void DocumentTree::write(const FileResult& result) {
  output.text() += diagnostics::terminalText(result.file) + "\n";
  session::NodeCursor nodes(result.parsed);
  session::LineTable::Cursor cursor(result.parsed.lines);
  const std::uint64_t total = nodes.count();
  while (cursor.advance()) {
    writeLine(cursor.line(), nodes, result);
    const std::uint64_t number = cursor.line().number;
    if (number % progress::kStepsPerShow == 0) result.stage.show(number, total);
  }
}

void DocumentTree::writeLine(const session::LineTable::Line& line, session::NodeCursor& nodes,
                             const FileResult& result) {
  lineNumber = line.number;
  if (line.outcome.nodeCount == 0) row(0, "(no node)");
  for (std::uint64_t i = 0; i < line.outcome.nodeCount; ++i) {
    writeTree(nodes.at(line.firstNode + i));
  }
  writeOutcome(line.outcome, result.parsers[line.outcome.parser].name);
  output.flushIfLarge();
}

void DocumentTree::writeOutcome(const session::LineOutcome& outcome, std::string_view parser) {
  const auto& result = outcome.result;
  if (result.type.kind != 0 || result.type.group != 0 || result.flag ||
      !result.markerTypes.empty()) {
    std::string text = "by " + diagnostics::terminalText(parser) + ", type " +
                       std::to_string(result.type.group) + "/" + std::to_string(result.type.kind);
    if (result.flag) text += ", flag";
    for (const auto& markerType : result.markerTypes) {
      text += " " + diagnostics::terminalText(fl::i18n::ustring_to_utf8(markerType));
    }
    row(1, text);
  }
  if (records == Records::kHidden) return;
  for (const std::string& record : outcome.log) row(1, "log: " + diagnostics::terminalText(record));
}

void DocumentTree::writeTree(const Node& top) {
  struct Level {
    const Node* next;
    const Node* end;
  };
  std::vector<Level> levels{{&top, &top + 1}};
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next == level.end) {
      levels.pop_back();
      continue;
    }
    const Node& node = *level.next++;
    const Node* firstChild = writeNode(node, levels.size() - 1);
    levels.push_back({firstChild, node->getChildren().end()});
  }
}

/// Writes the rows of `node` itself and returns the first child that is not shown in them.
const Node* DocumentTree::writeNode(const Node& node, std::size_t depth) {
  const auto& children = node->getChildren();
  const bool showsChild =
      kindOf(node) == NodeKind::kLine && children.size() == 1 && session::isBareText(children[0]);
  std::string text =
      diagnostics::terminalText(fl::i18n::ustring_to_utf8(node->getMetaClass().getName()));
  if (hasText(node)) text += " " + diagnostics::quotedText(session::textOf(node));
  if (showsChild) text += " " + diagnostics::quotedText(session::textOf(children[0]));
  appendNamed(text, "anchor", node->getAnchorId());
  if (kindOf(node) == NodeKind::kPiece) appendPiece(text, node);
  if (kindOf(node) == NodeKind::kTask) {
    appendNamed(text, "id",
                static_cast<const LiveAppIntegratedInlineNode::Impl*>(node.get())->getId());
  }
  row(depth, text);
  if (kindOf(node) == NodeKind::kTask) writeTask(node, depth + 1);
  writeDetails(node, depth + 1);
  return showsChild ? children.end() : children.begin();
}

void DocumentTree::writeTask(const Node& node, std::size_t depth) {
  const auto& data =
      static_cast<const LiveAppIntegratedInlineNode::Impl*>(node.get())->getLiveTaskData();
  const std::pair<std::string_view, std::u16string_view> fields[] = {
      {"taskId", data.getTaskId()},
      {"text", data.getText()},
      {"appIdentifier", data.getAppIdentifier()},
      {"appState", data.getAppState()},
      {"appVariables", data.getAppVariables()},
      {"appVariablesUserMap", data.getAppVariablesUserMap()},
      {"view", data.getView()},
      {"executionModel", data.getExecutionModel()},
      {"autoRun", data.getAutoRun()},
      {"collapsed", data.getCollapsed()}};
  for (const auto& [name, text] : fields) {
    if (!text.empty()) row(depth, std::string(name) + " " + diagnostics::quotedText(text));
  }
  row(depth, "numCodeLines " + std::to_string(data.getNumCodeLines()));
}

void DocumentTree::writeDetails(const Node& node, std::size_t depth) {
  for (const auto& failure : node->getParserFailures()) row(depth, describeFailure(failure));
  for (const auto& contribution : node->getContributorData()) {
    row(depth, describeContribution(contribution));
  }
}

void DocumentTree::beginRow(std::size_t depth) {
  const std::string number = lineNumber == 0 ? "" : std::to_string(lineNumber);
  lineNumber = 0;
  if (number.size() < kNumberWidth) output.text().append(kNumberWidth - number.size(), ' ');
  output.text().append(number).append(2 + 2 * std::min(depth, kDeepestIndent), ' ');
}

void DocumentTree::row(std::size_t depth, std::string_view text) {
  beginRow(depth);
  output.text().append(text).append(1, '\n');
}

}  // namespace tessera::formats

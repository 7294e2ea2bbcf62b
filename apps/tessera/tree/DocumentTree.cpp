#include "tessera/tree/DocumentTree.hpp"

#include <cstdint>
#include <string>
#include <utility>

#include "fl/i18n/ustring.hpp"
#include "tessera/diagnostics/terminalText.hpp"
#include "tessera/formats/NodeKind.hpp"
#include "tessera/session/plainLine.hpp"

namespace tessera::tree {

using document::kdzero::Node;
using formats::kindOf;
using formats::NodeKind;
using formats::Records;
using PieceImpl = pieces::PieceNode::Impl;

namespace {

// In the type of a result, a larger kind says that a task is open.
constexpr std::uint64_t kLargestIdleKind = 1;

constexpr std::size_t kTraceIndent = 4;

bool isInsideTask(const session::LineOutcome& outcome) {
  return outcome.result.type.kind > kLargestIdleKind;
}

bool hasDetails(const Node& node) {
  return !node->getAnchorId().empty() || !node->getParserFailures().empty() ||
         !node->getContributorData().empty() || !node->getChildren().empty();
}

/// Returns whether two pieces are of the same marker and have nothing besides it.
bool areOfOneMarker(const Node& first, const Node& second) {
  if (&first->getMetaClass() != &second->getMetaClass()) return false;
  if (hasDetails(first) || hasDetails(second)) return false;
  const auto* a = static_cast<const PieceImpl*>(first.get());
  const auto* b = static_cast<const PieceImpl*>(second.get());
  return a->getRange() == b->getRange() && a->getMarker() == b->getMarker();
}

}  // namespace

DocumentTree::DocumentTree(files::OutputText& output, const TreeStyle& style, Records records)
    : output(output),
      records(records),
      detail(records == Records::kShown ? Detail::kFull : Detail::kShort),
      rows(output.text(), style),
      nodeRows(rows, detail) {}

void DocumentTree::write(const formats::FileResult& result) {
  rows.appendHeading(diagnostics::terminalText(result.file));
  rows.beginLines(result.parsed.lines.lineCount());
  isInTask = false;
  session::NodeCursor nodes(result.parsed);
  session::LineTable::Cursor cursor(result.parsed.lines);
  const std::uint64_t total = nodes.count();
  while (cursor.advance()) {
    const Line written = cursor.line();
    writeLine(written, nodes);
    if (records == Records::kShown) {
      writeOutcome(written.outcome, result.parsers[written.outcome.parser].name);
    }
    output.flushIfLarge();
    if (written.number % progress::kStepsPerShow == 0) result.stage.show(written.number, total);
  }
  const std::size_t failureCount = nodeRows.takeFailureCount();
  if (rows.rowStyle().isTerminal && failureCount != 0) writeSummary(failureCount);
}

/// The lines with the failures may be far above, or gone from the screen.
void DocumentTree::writeSummary(std::size_t failureCount) {
  rows.endLines();
  std::string count = std::to_string(failureCount) + (failureCount == 1 ? " failure" : " failures");
  const std::size_t boldBytes = count.size();
  count += "; \"tessera check\" says more";
  rows.appendNote(0, {std::move(count), colors::kFailure, boldBytes});
}

void DocumentTree::writeLine(const Line& written, session::NodeCursor& nodes) {
  const bool wasInTask = std::exchange(isInTask, isInTask && isInsideTask(written.outcome));
  if (written.outcome.nodeCount == 1) {
    const Node& node = nodes.at(written.firstNode);
    if (session::isPlainLine(node)) {
      rows.setNumber(written.number);
      if (wasInTask && !isInTask) rows.closeBracket();
      if (rows.appendPlainRow(session::textOf(node->getChildren()[0]))) return;
      return writeText(node);
    }
  }
  writeNodes(written, nodes, wasInTask);
}

/// Writes the nodes of a line. Its number is on the rows of its line nodes, or on an empty row.
void DocumentTree::writeNodes(const Line& written, session::NodeCursor& nodes, bool wasInTask) {
  bool isNumbered = false;
  const auto beginText = [&] {
    if (!isNumbered && wasInTask && !isInTask) rows.closeBracket();
    rows.setNumber(written.number);
    isNumbered = true;
  };
  const auto writeEmptyText = [&] {
    if (isNumbered) return;
    beginText();
    rows.appendPlainRow({});
  };
  for (std::uint64_t i = 0; i < written.outcome.nodeCount; ++i) {
    const Node& node = nodes.at(written.firstNode + i);
    switch (kindOf(node)) {
      case NodeKind::kTaskLine:
        writeHeader(node);
        wasInTask = true;
        isInTask = isInsideTask(written.outcome);
        break;
      case NodeKind::kLine:
        beginText();
        writeText(node);
        break;
      default:
        writeEmptyText();
        nodeRows.appendTrees(&node, &node + 1, 0);
        break;
    }
  }
  writeEmptyText();
}

void DocumentTree::writeHeader(const Node& header) {
  rows.openBracket();
  if (header->getChildren().empty()) {
    rows.appendNote(0, {describeNode(header, detail), colors::kTask});
  }
  nodeRows.appendChildren(header, 0);
  nodeRows.appendExtras(header, TreeRows::kHangingIndent);
}

void DocumentTree::writeText(const Node& lineNode) {
  line.clear();
  labeledPieces.clear();
  for (const Node& child : lineNode->getChildren()) addChild(child);
  LineRows(rows, line).append();
  nodeRows.appendExtras(lineNode, 0);
}

void DocumentTree::addChild(const Node& child) {
  if (session::isBareText(child)) return line.add(session::textOf(child));
  const std::size_t label = labelOf(child);
  if (formats::hasText(child)) line.addMarked(session::textOf(child), label);
}

/// Returns the number of the label of `child`, which pieces of one marker share.
std::size_t DocumentTree::labelOf(const Node& child) {
  const bool isPiece = kindOf(child) == NodeKind::kPiece;
  if (isPiece) {
    const auto known = labeledPieces.find(static_cast<const PieceImpl*>(child.get())->getRange());
    if (known != labeledPieces.end() && areOfOneMarker(*known->second.node, child)) {
      return known->second.label;
    }
  }
  Label label{describeNode(child, detail), colorOf(child), {}};
  if (hasDetails(child)) {
    label.appendDetails = [this, &child](std::size_t indent) {
      nodeRows.appendExtras(child, indent);
      nodeRows.appendChildren(child, indent);
    };
  }
  const std::size_t number = line.addLabel(std::move(label));
  if (isPiece) {
    const auto& range = static_cast<const PieceImpl*>(child.get())->getRange();
    labeledPieces.insert_or_assign(range, LabeledPiece{&child, number});
  }
  return number;
}

void DocumentTree::writeOutcome(const session::LineOutcome& outcome, std::string_view parser) {
  const auto& [group, kind] = outcome.result.type;
  std::string text =
      "parser " + (parser.empty() ? "without a name" : diagnostics::terminalText(parser));
  text += ", type " + std::to_string(group) + "/" + std::to_string(kind);
  if (outcome.result.flag) text += ", flag";
  std::string_view separator = ", markers ";
  for (const auto& markerType : outcome.result.markerTypes) {
    text.append(std::exchange(separator, " "));
    text += diagnostics::terminalText(fl::i18n::ustring_to_utf8(markerType));
  }
  // Farther in than the text, which is then found at once.
  rows.appendNote(kTraceIndent, {std::move(text), colors::kDetail});
  for (const std::string& record : outcome.log) {
    rows.appendNote(kTraceIndent, {"log: " + diagnostics::terminalText(record), colors::kDetail});
  }
}

}  // namespace tessera::tree

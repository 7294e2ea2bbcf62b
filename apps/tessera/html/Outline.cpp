#include "tessera/html/Outline.hpp"

#include <string_view>

#include "tessera/formats/NodeKind.hpp"
#include "tessera/html/HtmlText.hpp"
#include "tessera/html/PieceMarkers.hpp"
#include "tessera/html/TaskCard.hpp"
#include "tessera/pieces/ControlNode.hpp"
#include "tessera/session/NodeCursor.hpp"
#include "tessera/session/plainLine.hpp"

namespace tessera::html {

using document::kdzero::Node;
using formats::NodeKind;

namespace {

/// Calls `visit` with each top-level node that is not a plain line, and the number of its line.
template <typename Visit>
void visitNodes(const session::ParsedSnippet& parsed, Visit visit) {
  session::NodeCursor nodes(parsed);
  session::LineTable::Cursor cursor(parsed.lines);
  while (cursor.advance()) {
    const session::LineTable::Line line = cursor.line();
    for (std::uint64_t i = 0; i < line.outcome.nodeCount; ++i) {
      const Node& node = nodes.at(line.firstNode + i);
      if (!session::isPlainLine(node)) visit(node, line.number);
    }
  }
}

/// Counts the marker of a piece, unless another piece of it is in `known`.
void countMarker(const Node& node, PieceMarkers& known, SectionCounts& counts) {
  if (formats::kindOf(node) != NodeKind::kPiece || !known.add(node)) return;
  const bool isControl = &node->getMetaClass() == &pieces::ControlNode::Impl::classOf();
  ++(isControl ? counts.controls : counts.outputs);
}

/// A long outline is a sequence of lists that a browser lays out when they come into view.
void beginEntry(HtmlText& html, std::uint64_t index) {
  constexpr std::uint64_t kEntriesOfList = 100;
  if (index % kEntriesOfList != 0) return;
  if (index != 0) html.add("</ol>\n");
  html.add("<ol class=\"k h10\">\n");
}

}  // namespace

SectionCounts countParts(const PageFile& file) {
  SectionCounts counts{.lines = file.checked.lines.count()};
  visitNodes(file.parsed, [&counts](const Node& node, std::uint64_t /*line*/) {
    counts.anchors += node->getAnchorId().empty() ? 0 : 1;
    counts.tasks += formats::kindOf(node) == NodeKind::kTaskLine ? 1 : 0;
    PieceMarkers known;
    for (const Node& child : node->getChildren()) countMarker(child, known, counts);
  });
  return counts;
}

void writeOutline(files::OutputText& output, const PageFile& file, const SectionCounts& counts) {
  if (counts.anchors + counts.tasks == 0) return;
  HtmlText html(output.text());
  html.add("<nav class=outline aria-labelledby=\"f", file.number, "o f", file.number,
           "h\"><h3 id=f", file.number, "o>Outline</h3>\n");
  std::uint64_t entries = 0;
  visitNodes(file.parsed, [&](const Node& node, std::uint64_t line) {
    const bool isTask = formats::kindOf(node) == NodeKind::kTaskLine;
    if (node->getAnchorId().empty() && !isTask) return;
    beginEntry(html, entries++);
    if (!node->getAnchorId().empty()) {
      html.add("<li class=oa><a href=#f", file.number, "-", line, ">", node->getAnchorId(),
               "</a></li>\n");
    }
    if (isTask) {
      html.add("<li class=ot><a href=#f", file.number, "-", line, ">", titleOfTask(node),
               "</a></li>\n");
    }
    output.flushIfLarge();
  });
  html.add("</ol></nav>\n");
}

}  // namespace tessera::html

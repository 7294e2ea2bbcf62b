#include "tessera/html/LineHtml.hpp"

#include "foundation/json/Writer.hpp"
#include "tessera/formats/NodeKind.hpp"
#include "tessera/html/ControlHtml.hpp"
#include "tessera/pieces/ControlNode.hpp"
#include "tessera/session/plainLine.hpp"

namespace tessera::html {

using document::kdzero::Node;
using formats::NodeKind;
using pieces::ControlNode;
using pieces::PieceNode;

namespace {

std::string indentedJson(const foundation::json::Object& members) {
  std::string json;
  foundation::json::Writer(json, foundation::json::Form::kIndented).object(members);
  return json;
}

void addMarkerData(HtmlText& html, const PieceNode::Impl& piece, std::u16string_view name) {
  html.add("<details class=j><summary>data<span class=v> of ", name, "</span></summary><pre>",
           indentedJson(piece.getData()), "</pre></details>");
}

}  // namespace

void LineHtml::begin(std::uint64_t newFile, std::uint64_t newNumber) {
  file = newFile;
  number = newNumber;
  rowCount = 1;
  text.clear();
  labels.clear();
  below.clear();
  described.clear();
}

void LineHtml::add(const Node& top) {
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
    addNode(node);
    const auto& children = node->getChildren();
    levels.push_back({children.begin(), children.end()});
  }
}

void LineHtml::addNode(const Node& node) {
  switch (formats::kindOf(node)) {
    case NodeKind::kPlainText:
      HtmlText(text).add(session::textOf(node));
      break;
    case NodeKind::kPiece:
      addPiece(node);
      break;
    case NodeKind::kOther:
      addOther(node);
      break;
    default:
      break;
  }
  HtmlText html(labels);
  if (!node->getAnchorId().empty()) addAnchor(html, file, number, node->getAnchorId());
  addData(node);
}

void LineHtml::addPiece(const Node& node) {
  const auto& piece = *static_cast<const PieceNode::Impl*>(node.get());
  const bool isControl = &node->getMetaClass() == &ControlNode::Impl::classOf();
  HtmlText html(text);
  if (isControl) {
    html.add("<mark class=c>", piece.getText(), "</mark>");
  } else {
    html.add("<mark class=o>", piece.getText(), "</mark>");
  }
  if (described.add(node)) describePiece(piece, isControl);
}

void LineHtml::describePiece(const PieceNode::Impl& piece, bool isControl) {
  HtmlText html(labels);
  std::u16string_view name = piece.getId();
  if (name.empty()) name = piece.getType();
  if (isControl) {
    html.add(" <span class=\"w c\">");
    const bool isComplete = drawControl(html, piece);
    html.add("</span>");
    if (!isComplete) addMarkerData(html, piece, name);
    return;
  }
  if (name.empty()) name = u"output";
  html.add(" <span class=\"w o\">", name);
  if (!piece.getType().empty() && name != piece.getType()) {
    html.add(" <span class=q>", piece.getType(), "</span>");
  }
  html.add("</span>");
  if (!piece.getData().empty()) addMarkerData(html, piece, name);
}

/// Adds a node of a class that another bundle defines.
void LineHtml::addOther(const Node& node) {
  HtmlText html(text);
  if (formats::hasText(node)) html.add("<mark class=n>", session::textOf(node), "</mark>");
  HtmlText(labels).add(" <span class=\"w n\">", node->getMetaClass().getName(), "</span>");
}

void LineHtml::addData(const Node& node) {
  HtmlText html(below);
  for (const auto& contribution : node->getContributorData()) {
    html.add("<details class=d><summary>Data of ", contribution->getContributingFeature(),
             "</summary>");
    for (const auto& line : contribution->getLineDataList()) {
      html.add("<pre>", indentedJson(line->getData()), "</pre>");
    }
    html.add("</details>");
    ++rowCount;
  }
}

void LineHtml::addLog(const std::vector<std::string>& log) {
  if (log.empty()) return;
  HtmlText html(below);
  html.add("<details class=d><summary>Log</summary><pre>");
  for (const std::string& record : log) html.add(record, "\n");
  html.add("</pre></details>");
  ++rowCount;
}

void LineHtml::write(std::string& output) const {
  output.append(text).append(labels).append(below);
}

void addAnchor(HtmlText& html, std::uint64_t file, std::uint64_t number, std::u16string_view id) {
  html.add(" <a class=a href=#f", file, "-", number, ">", id, "</a>");
}

}  // namespace tessera::html

#include "tessera/formats/NodeWriter.hpp"

#include <cstdint>
#include <vector>

#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "tessera/formats/NodeKind.hpp"
#include "tessera/pieces/PieceNode.hpp"
#include "tessera/session/plainLine.hpp"

namespace tessera::formats {

using document::kdzero::LiveAppIntegratedInlineNode;
using document::kdzero::Node;

void NodeWriter::write(const Node& top) {
  /// The nodes of one level that are still to be written.
  struct Level {
    const Node* next;
    const Node* end;
  };
  std::vector<Level> levels{{&top, &top + 1}};
  while (true) {
    Level& level = levels.back();
    if (level.next != level.end) {
      const auto& children = (*level.next)->getChildren();
      beginNode(*level.next);
      levels.push_back({children.begin(), children.end()});
      continue;
    }
    levels.pop_back();
    if (levels.empty()) return;
    endNode(*levels.back().next++);
  }
}

void NodeWriter::beginNode(const Node& node) {
  json.beginObject();
  member("kind", node->getMetaClass().getName());
  if (hasText(node)) member("text", session::textOf(node));
  const NodeKind kind = kindOf(node);
  if (kind == NodeKind::kPiece) writePiece(node);
  if (kind == NodeKind::kTask) writeTask(node);
  member("anchorId", node->getAnchorId());
  json.key("children");
  json.beginArray();
}

void NodeWriter::endNode(const Node& node) {
  json.endArray();
  writeContributorData(node);
  writeFailures(node);
  json.endObject();
}

void NodeWriter::writePiece(const Node& node) {
  const auto* piece = static_cast<const pieces::PieceNode::Impl*>(node.get());
  member("id", piece->getId());
  member("type", piece->getType());
  json.key("range");
  json.beginArray();
  json.number(piece->getRange().first);
  json.number(piece->getRange().second);
  json.endArray();
  json.key("data");
  json.object(piece->getData());
}

void NodeWriter::writeTask(const Node& node) {
  const auto* task = static_cast<const LiveAppIntegratedInlineNode::Impl*>(node.get());
  const auto& data = task->getLiveTaskData();
  member("id", task->getId());
  json.key("liveTaskData");
  json.beginObject();
  member("taskId", data.getTaskId());
  member("text", data.getText());
  member("appIdentifier", data.getAppIdentifier());
  member("appState", data.getAppState());
  member("appVariables", data.getAppVariables());
  member("appVariablesUserMap", data.getAppVariablesUserMap());
  member("view", data.getView());
  member("executionModel", data.getExecutionModel());
  member("autoRun", data.getAutoRun());
  member("collapsed", data.getCollapsed());
  json.key("numCodeLines");
  json.number(std::uint64_t{data.getNumCodeLines()});
  json.endObject();
}

void NodeWriter::writeContributorData(const Node& node) {
  json.key("contributorData");
  json.beginArray();
  for (const auto& contribution : node->getContributorData()) {
    json.beginObject();
    member("contributingFeature", contribution->getContributingFeature());
    json.key("lineData");
    json.beginArray();
    for (const auto& line : contribution->getLineDataList()) json.object(line->getData());
    json.endArray();
    json.endObject();
  }
  json.endArray();
}

void NodeWriter::writeFailures(const Node& node) {
  json.key("parserFailures");
  json.beginArray();
  for (const auto& failure : node->getParserFailures()) {
    json.beginObject();
    member("failureId", failure.getFailureId());
    json.key("markerInfo");
    json.beginObject();
    member("markerId", failure.getMarkerInfo().getMarkerId());
    member("featureId", failure.getMarkerInfo().getFeatureId());
    member("subFeatureId", failure.getMarkerInfo().getSubFeatureId());
    json.endObject();
    json.key("failureData");
    json.object(failure.getFailureData());
    json.endObject();
  }
  json.endArray();
}

void NodeWriter::member(std::string_view key, std::u16string_view text) {
  json.key(key);
  json.text(text);
}

}  // namespace tessera::formats

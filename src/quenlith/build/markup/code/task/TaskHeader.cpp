#include "quenlith/build/markup/code/task/TaskHeader.hpp"

#include <boost/uuid/uuid.hpp>
#include <ostream>
#include <utility>

#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "quenlith/build/markup/code/task/TaskAppendix.hpp"
#include "quenlith/shared/logging/trace.hpp"

namespace quenlith::build::markup::code::task {

using document::kdzero::LiveAppIntegratedInlineNode;
using document::kdzero::LiveAppLineNode;
using document::kdzero::Node;
using document::kdzero::TesseraDocument;
using quenlith::shared::logging::trace;
using quenlith::shared::logging::traceWith;
using syntax::Marker;
using tessera::contentmodel::kdzero::LiveTaskData;

namespace {

void traceTaskId(const LiveTaskData& data) {
  traceWith(
      [&data](std::ostream& message) { message << fl::i18n::ustring_to_utf8(data.getTaskId()); });
}

/// Returns the task node that is the first child of the top-level node at `index`, of whatever
/// kind that is; the empty handle when there is no such node or no such child.
LiveAppIntegratedInlineNode findTaskNode(const TesseraDocument& document, std::uint64_t index) {
  if (index >= document.getNumberOfChildren()) return {};
  const Node top = document.getChildAt(index);
  if (top->getChildren().empty()) return {};
  return LiveAppIntegratedInlineNode::castFrom(top->getChildren()[0]);
}

}  // namespace

LiveAppLineNode makeTaskHeader(const kd::zero::Model& model,
                               const shared::appendix::AppendixBuilder& appendixBuilder,
                               const Marker& taskMarker) {
  constexpr boost::uuids::uuid kNilUuid{};
  LiveAppIntegratedInlineNode inlineNode =
      LiveAppIntegratedInlineNode::Builder(model).createLiveAppIntegratedInlineNode(kNilUuid);
  LiveAppLineNode header = LiveAppLineNode::Builder(model).createLiveAppLineNode(kNilUuid);

  inlineNode->setId(taskMarker.getId());
  trace("Parsing live task appendix data");
  const LiveTaskData data = buildLiveTaskData(appendixBuilder, taskMarker);
  trace("Adding Header node to tessera doc");
  traceTaskId(data);
  inlineNode->setLiveTaskData(data);
  header->getChildrenMutable().add(std::move(inlineNode));
  return header;
}

void storeLineCount(const TesseraDocument& document, std::uint64_t headerIndex,
                    std::uint16_t lineCount) {
  const LiveAppIntegratedInlineNode inlineNode = findTaskNode(document, headerIndex);
  if (!inlineNode) return;
  LiveTaskData data = inlineNode->getLiveTaskData();
  traceTaskId(data);
  data.setNumCodeLines(lineCount);
  inlineNode->setLiveTaskData(data);
}

}  // namespace quenlith::build::markup::code::task

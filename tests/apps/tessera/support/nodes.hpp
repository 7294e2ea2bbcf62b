#pragma once

#include <boost/uuid/uuid.hpp>
#include <string_view>

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/LiveAppLineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"

/// Makes nodes for tests.
namespace nodes {

inline document::kdzero::LineNode makeLine(const kd::zero::Model& model) {
  return document::kdzero::LineNode::Builder(model).createLineNode(boost::uuids::uuid());
}

inline document::kdzero::PlainTextNode makeText(const kd::zero::Model& model,
                                                std::u16string_view text) {
  using document::kdzero::PlainTextNode;
  PlainTextNode node = PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid());
  node->setText(text);
  return node;
}

inline document::kdzero::LiveAppLineNode makeTaskLine(const kd::zero::Model& model) {
  using document::kdzero::LiveAppLineNode;
  return LiveAppLineNode::Builder(model).createLiveAppLineNode(boost::uuids::uuid());
}

inline document::kdzero::LiveAppIntegratedInlineNode makeTask(const kd::zero::Model& model) {
  using document::kdzero::LiveAppIntegratedInlineNode;
  return LiveAppIntegratedInlineNode::Builder(model).createLiveAppIntegratedInlineNode(
      boost::uuids::uuid());
}

}  // namespace nodes

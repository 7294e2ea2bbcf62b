#pragma once

#include <boost/uuid/uuid.hpp>
#include <string_view>

#include "document/kdzero/PlainTextNode.hpp"
#include "kd/zero/Model.hpp"

namespace quenlith::build::markup::code::line {

/// Returns a new, detached plain-text node of `model` with a copy of `text`. Throws what the model
/// throws.
inline document::kdzero::PlainTextNode makePlainTextNode(const kd::zero::Model& model,
                                                         std::u16string_view text) {
  using document::kdzero::PlainTextNode;
  PlainTextNode node = PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid{});
  node->setText(text);
  return node;
}

}  // namespace quenlith::build::markup::code::line

#pragma once

#include <boost/uuid/uuid.hpp>
#include <cstdint>
#include <string_view>
#include <utility>

#include "document/kdzero/TextNode.hpp"
#include "foundation/json/Value.hpp"
#include "quenlith/export/piece_nodes.hpp"

namespace tessera::pieces {

/// Handle to a node with a piece of a line that a marker owns: the base of OutputNode and
/// ControlNode.
class PieceNode : public kd::zero::Handle<PieceNode, document::kdzero::TextNode> {
 public:
  class Impl;
};

/// The text is that of the piece; the other properties are those of the marker, whose range may
/// cover more than this piece.
class QUENLITH_PIECE_NODES_EXPORT PieceNode::Impl : public document::kdzero::TextNode::Impl {
 public:
  /// Begin and end of a half-open range, in 16-bit code units of the line.
  using Range = std::pair<std::uint64_t, std::uint64_t>;

  static const kd::zero::meta::Class& classOf() noexcept { return kMetaClass; }

  /// The marker's id; valid until it is set again or the node is destroyed.
  std::u16string_view getId() const noexcept { return id; }
  void setId(std::u16string_view newId) { id = newId; }

  /// The marker's type, "slider" in `control:slider`; valid until it is set again or the node is
  /// destroyed.
  std::u16string_view getType() const noexcept { return type; }
  void setType(std::u16string_view newType) { type = newType; }

  const Range& getRange() const noexcept { return range; }
  void setRange(const Range& newRange) noexcept { range = newRange; }

  const foundation::json::Object& getData() const noexcept { return data; }
  void setData(foundation::json::Object newData) noexcept { data = std::move(newData); }

 protected:
  Impl(kd::zero::meta::ClassKey nodeClass, const boost::uuids::uuid& uuid)
      : document::kdzero::TextNode::Impl(nodeClass, uuid) {}
  ~Impl();

 private:
  static const kd::zero::meta::Class kMetaClass;

  ustring id;
  ustring type;
  Range range;
  foundation::json::Object data;
};

}  // namespace tessera::pieces

#pragma once

#include <boost/uuid/uuid.hpp>
#include <cstdint>
#include <string_view>
#include <utility>

#include "document/kdzero/TextNode.hpp"
#include "foundation/json/Value.hpp"
#include "quenlith/export/piece_nodes.hpp"
#include "quenlith/syntax/Marker.hpp"

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

  /// The marker that owns the piece. Its parts are shared: a marker may own many pieces, and its id
  /// and data may be most of a line.
  const quenlith::syntax::Marker& getMarker() const noexcept { return marker; }
  void setMarker(quenlith::syntax::Marker newMarker) noexcept { marker = std::move(newMarker); }

  /// The marker's id; valid until the marker is set again or the node is destroyed.
  std::u16string_view getId() const noexcept { return marker.idView(); }

  /// The marker's type, "slider" in `control:slider`; valid until the marker is set again or the
  /// node is destroyed.
  std::u16string_view getType() const noexcept { return marker.typeView(); }

  const Range& getRange() const noexcept { return range; }
  void setRange(const Range& newRange) noexcept { range = newRange; }

  /// The marker's data. The first call parses it and may throw std::bad_alloc.
  const foundation::json::Object& getData() const { return marker.dataView(); }

 protected:
  Impl(kd::zero::meta::ClassKey nodeClass, const boost::uuids::uuid& uuid)
      : document::kdzero::TextNode::Impl(nodeClass, uuid) {}
  ~Impl();

 private:
  static const kd::zero::meta::Class kMetaClass;

  quenlith::syntax::Marker marker;
  Range range;
};

}  // namespace tessera::pieces

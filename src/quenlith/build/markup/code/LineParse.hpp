#pragma once

#include <string_view>
#include <utility>

#include "document/kdzero/Node.hpp"
#include "fl/i18n/ustring.hpp"
#include "kd/zero/Model.hpp"
#include "quenlith/build/markup/ParseResult.hpp"
#include "quenlith/build/markup/code/LineContent.hpp"
#include "quenlith/build/markup/code/LineCut.hpp"
#include "quenlith/build/markup/code/LineParsers.hpp"
#include "quenlith/build/markup/core/MarkerInfo.hpp"
#include "quenlith/syntax/markers.hpp"

namespace quenlith::build::markup::code {

/// The parse of one line that may hold markers into its node. Borrows all that it is given.
class LineParse {
 public:
  LineParse(const kd::zero::Model& lineModel, document::kdzero::Node node,
            const LineParsers& lineParsers, ParseResult& lineResult)
      : model(lineModel), lineNode(std::move(node)), parsers(lineParsers), result(lineResult) {}

  /// Gives the line node the children, anchor, contributor data and failures of `line`, in which
  /// stands `content`, and the result the marker kinds.
  void parse(const fl::i18n::ustring& line, LineContent content);

 private:
  void parseNormalised(const fl::i18n::ustring& line);
  void takeMarker(const core::MarkerInfo& marker);
  bool isHandled(const syntax::Marker& marker) const;
  void takeRange(const core::MarkerInfo& marker);
  void setAnchor(const syntax::Marker& marker);
  void addContributorData(const syntax::Marker& marker);
  void appendPieces(const LineCut::Pieces& pieces);
  void appendPlainText(std::u16string_view text);
  void appendOwned(const LinePiece& piece);

  const kd::zero::Model& model;
  document::kdzero::Node lineNode;
  const LineParsers& parsers;
  ParseResult& result;

  std::size_t lineLength = 0;
  syntax::MarkerList markers;
  bool hasTask = false;
  LineCut cut;
};

}  // namespace quenlith::build::markup::code

#pragma once

#include "document/kdzero/LineNode.hpp"
#include "fl/i18n/ustring.hpp"
#include "kd/zero/Model.hpp"
#include "quenlith/build/markup/ParseResult.hpp"
#include "quenlith/build/markup/code/line/ParserLists.hpp"

namespace quenlith::build::markup::code::line {

/// Returns a new, detached node of `model` with the children, anchor id, contributor data and
/// failures of `line`. Adds the line's marker kinds to `result`.
///
/// Propagates what a parser throws; `result` may then contain some of the kinds.
document::kdzero::LineNode parseLineNode(const kd::zero::Model& model, const ParserLists& parsers,
                                         const fl::i18n::ustring& line, ParseResult& result);

}  // namespace quenlith::build::markup::code::line

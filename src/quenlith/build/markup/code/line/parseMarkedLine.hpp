#pragma once

#include "document/kdzero/LineNode.hpp"
#include "kd/zero/Model.hpp"
#include "quenlith/build/markup/ParseResult.hpp"
#include "quenlith/build/markup/code/line/ParserLists.hpp"
#include "quenlith/build/markup/code/line/ScannedLine.hpp"

namespace quenlith::build::markup::code::line {

/// Adds the children, anchor id, contributor data and failures of `line` to `lineNode`, a detached
/// node of `model`. Adds the line's marker kinds to `result`.
///
/// Propagates what a parser throws; `lineNode` and `result` may then contain a part of this.
void parseMarkedLine(const kd::zero::Model& model, const document::kdzero::LineNode& lineNode,
                     const ParserLists& parsers, ScannedLine line, ParseResult& result);

}  // namespace quenlith::build::markup::code::line

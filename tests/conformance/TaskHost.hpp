#pragma once

#include <memory>
#include <string>
#include <vector>

#include "conformance/ParserHost.hpp"
#include "quenlith/build/markup/code/TaskSnippetParserImpl.hpp"

namespace quenlith::conformance {

/// A host with a task parser.
class TaskHost : public ParserHost {
 public:
  explicit TaskHost(const WorldPlan& plan = {});

  ParseResult parse(const ustring& text, std::uint8_t kind, const ustring& block = {});
  /// Parses `lines` in order, each with all lines as the block and the kind of the previous result.
  /// Returns the kinds of the results.
  std::vector<int> parseLines(const std::vector<ustring>& lines);

  /// Returns the top-level nodes in a short form: "line" or "header ID COUNT", then "@ANCHOR" and
  /// the failure ids, if there are any.
  std::vector<std::string> summary() const;
  /// The task data of the header at `index`.
  TaskRecord taskAt(std::size_t index) const;

  build::markup::code::TaskSnippetParserImpl parser;
};

/// Returns a block with `count` task markers of each of the ids.
ustring blockOf(const std::vector<ustring>& ids, std::size_t count = 2);

}  // namespace quenlith::conformance

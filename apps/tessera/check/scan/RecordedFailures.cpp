#include "tessera/check/scan/RecordedFailures.hpp"

namespace tessera::check::scan {
namespace {

using document::kdzero::Node;

/// Adds the failures of `top` and of all nodes below it.
void addFailures(const Node& top, std::uint64_t line, std::vector<RecordedFailure>& failures) {
  std::vector<const Node*> pending{&top};
  while (!pending.empty()) {
    const Node& node = *pending.back();
    pending.pop_back();
    for (const auto& failure : node->getParserFailures()) {
      const auto& info = failure.getMarkerInfo();
      failures.push_back({line, std::u16string(failure.getFailureId()),
                          std::u16string(info.getFeatureId()), std::u16string(info.getMarkerId())});
    }
    const auto& children = node->getChildren();
    for (std::size_t i = children.size(); i > 0; --i) pending.push_back(&children[i - 1]);
  }
}

}  // namespace

std::vector<RecordedFailure> collectFailures(const session::ParsedSnippet& snippet) {
  std::vector<RecordedFailure> failures;
  const auto& nodes = snippet.document->getChildren();
  session::LineTable::Cursor outcomes(snippet.lines);
  while (outcomes.advance()) {
    const auto line = outcomes.line();
    for (std::uint64_t i = 0; i < line.outcome.nodeCount; ++i) {
      addFailures(nodes[line.firstNode + i], line.number, failures);
    }
  }
  return failures;
}

}  // namespace tessera::check::scan

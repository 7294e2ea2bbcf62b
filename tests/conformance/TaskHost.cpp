#include "conformance/TaskHost.hpp"

#include "fl/i18n/ustring.hpp"

namespace quenlith::conformance {

using fl::i18n::ustring_to_utf8;

TaskHost::TaskHost(const WorldPlan& plan) : ParserHost(plan), parser(appendix, provider) {}

ParseResult TaskHost::parse(const ustring& text, std::uint8_t kind, const ustring& block) {
  return parser.parse(document, snippetOf(text, kind, block));
}

std::vector<int> TaskHost::parseLines(const std::vector<ustring>& lines) {
  ustring block;
  for (const ustring& line : lines) block += line + u"\n";
  std::vector<int> kinds;
  std::uint8_t kind = 0;
  for (const ustring& line : lines) {
    kind = parse(line, kind, block).type.kind;
    kinds.push_back(kind);
  }
  return kinds;
}

std::vector<std::string> TaskHost::summary() const {
  std::vector<std::string> texts;
  for (const NodeRecord& node : nodes()) {
    std::string text = "line";
    if (node.kind == NodeKind::kTaskLine) {
      const NodeRecord& task = node.children.at(0);
      text = "header " + ustring_to_utf8(task.id) + ' ' + std::to_string(task.task.numCodeLines);
    }
    if (!node.anchorId.empty()) text += " @" + ustring_to_utf8(node.anchorId);
    for (const FailureRecord& failure : node.failures) {
      text += ' ' + ustring_to_utf8(failure.failureId);
    }
    texts.push_back(text);
  }
  return texts;
}

TaskRecord TaskHost::taskAt(std::size_t index) const {
  return nodes().at(index).children.at(0).task;
}

ustring blockOf(const std::vector<ustring>& ids, std::size_t count) {
  ustring block;
  for (const ustring& id : ids) {
    for (std::size_t i = 0; i < count; ++i) block += u"# <@task#" + id + u">\n";
  }
  return block;
}

}  // namespace quenlith::conformance

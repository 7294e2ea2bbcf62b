#include "tessera/html/TaskCard.hpp"

#include <utility>

#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "tessera/formats/NodeKind.hpp"
#include "tessera/html/LineHtml.hpp"

namespace tessera::html {

using document::kdzero::LiveAppIntegratedInlineNode;
using document::kdzero::Node;

namespace {

/// Returns the task of a header; null if it has none.
const LiveAppIntegratedInlineNode::Impl* taskOf(const Node& header) noexcept {
  for (const Node& child : header->getChildren()) {
    if (formats::kindOf(child) != formats::NodeKind::kTask) continue;
    return static_cast<const LiveAppIntegratedInlineNode::Impl*>(child.get());
  }
  return nullptr;
}

void addSettings(HtmlText& html, const LiveAppIntegratedInlineNode::Impl& task) {
  const auto& data = task.getLiveTaskData();
  // The names are those of the settings in the appendix.
  const std::pair<std::string_view, std::u16string_view> settings[] = {
      {"id", task.getId()},
      {"uniqueId", data.getTaskId()},
      {"taskClassDefFile", data.getAppIdentifier()},
      {"run", data.getExecutionModel()},
      {"autorun", data.getAutoRun()},
      {"collapsed", data.getCollapsed()},
      {"view", data.getView()},
      {"outputs", data.getAppVariables()},
      {"variablesMap", data.getAppVariablesUserMap()},
      {"appState", data.getAppState()}};
  html.add("<dl>");
  for (const auto& [name, text] : settings) {
    if (!text.empty()) html.add("<div><dt>", name, "</dt><dd>", text, "</dd></div>");
  }
  html.add("</dl>\n");
}

/// Adds how many lines a task has, unless the parsers do not say it.
void addLineCount(HtmlText& html, std::uint64_t lines) {
  if (lines == 0) return;
  html.add(" <span class=q>", lines);
  if (lines == 1) {
    html.add(" line</span>");
  } else {
    html.add(" lines</span>");
  }
}

}  // namespace

std::u16string_view titleOfTask(const Node& header) noexcept {
  const auto* task = taskOf(header);
  if (task == nullptr) return u"task";
  if (!task->getLiveTaskData().getText().empty()) return task->getLiveTaskData().getText();
  return task->getId().empty() ? std::u16string_view(u"task") : task->getId();
}

std::uint64_t linesOfTask(const Node& header) noexcept {
  const auto* task = taskOf(header);
  return task == nullptr ? 0 : task->getLiveTaskData().getNumCodeLines();
}

void beginTaskCard(HtmlText& html, const Node& header, std::uint64_t file, std::uint64_t line) {
  const auto* task = taskOf(header);
  if (task != nullptr && task->getLiveTaskData().getCollapsed() == u"true") {
    html.add("<details class=t>");
  } else {
    html.add("<details class=t open>");
  }
  html.add("<summary><h3><span class=v>Task: </span>", titleOfTask(header), "</h3>");
  addLineCount(html, linesOfTask(header));
  if (!header->getAnchorId().empty()) addAnchor(html, file, line, header->getAnchorId());
  html.add("</summary>\n");
  if (task != nullptr) addSettings(html, *task);
}

}  // namespace tessera::html

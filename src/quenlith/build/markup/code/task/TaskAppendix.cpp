#include "quenlith/build/markup/code/task/TaskAppendix.hpp"

#include "quenlith/build/markup/code/task/getStringValue.hpp"
#include "quenlith/shared/logging/trace.hpp"

namespace quenlith::build::markup::code::task {

using quenlith::shared::logging::trace;
using shared::appendix::AppendixBuilder;
using syntax::Marker;
using tessera::contentmodel::kdzero::LiveTaskData;

std::map<std::string, foundation::json::Value> findAppendixEntry(
    const AppendixBuilder& appendixBuilder, const Marker& taskMarker) {
  trace("finding Appendix Entry");
  const shared::appendix::AppendixEntry entry = appendixBuilder.findEntry(taskMarker);
  if (!entry.marker) return {};
  return entry.marker->getData();
}

LiveTaskData buildLiveTaskData(const AppendixBuilder& appendixBuilder, const Marker& taskMarker) {
  const auto data = findAppendixEntry(appendixBuilder, taskMarker);
  return LiveTaskData()
      .setAppIdentifier(getStringValue(data, "taskClassDefFile"))
      .setTaskId(getStringValue(data, "uniqueId"))
      .setText(getStringValue(data, "text"))
      .setExecutionModel(getStringValue(data, "run"))
      .setAutoRun(getStringValue(data, "autorun"))
      .setCollapsed(getStringValue(data, "collapsed"))
      .setAppVariables(getStringValue(data, "outputs"))
      .setAppVariablesUserMap(getStringValue(data, "variablesMap"))
      .setAppState(getStringValue(data, "appState"))
      .setView(getStringValue(data, "view"));
}

}  // namespace quenlith::build::markup::code::task

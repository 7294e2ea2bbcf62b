#include "quenlith/build/markup/code/task/TaskAppendix.hpp"

#include <map>
#include <string>

#include "foundation/json/Value.hpp"
#include "quenlith/build/markup/code/task/getStringValue.hpp"
#include "quenlith/shared/logging/trace.hpp"

namespace quenlith::build::markup::code::task {

using quenlith::shared::logging::trace;
using shared::appendix::AppendixBuilder;
using syntax::Marker;
using tessera::contentmodel::kdzero::LiveTaskData;

std::optional<Marker> findAppendixEntry(const AppendixBuilder& appendixBuilder,
                                        const Marker& taskMarker) {
  trace("finding Appendix Entry");
  return appendixBuilder.findEntry(taskMarker).marker;
}

LiveTaskData buildLiveTaskData(const AppendixBuilder& appendixBuilder, const Marker& taskMarker) {
  const std::optional<Marker> entry = findAppendixEntry(appendixBuilder, taskMarker);
  const auto data = entry ? entry->getData() : std::map<std::string, foundation::json::Value>();
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

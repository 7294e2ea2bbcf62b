#include "quenlith/build/markup/code/task/TaskFailures.hpp"

#include <optional>
#include <utility>

#include "failures/kdzero/MarkerInfo.hpp"
#include "quenlith/build/markup/code/failure/failureIds.hpp"
#include "quenlith/build/markup/code/task/TaskAppendix.hpp"
#include "quenlith/shared/logging/trace.hpp"

namespace quenlith::build::markup::code::task {

using document::kdzero::Node;
using failures::kdzero::ParserFailure;
using fl::i18n::ustring;
using quenlith::shared::logging::trace;
using shared::appendix::AppendixBuilder;
using syntax::Marker;

void TaskFailures::addMissingPartner(Node lineNode, const AppendixBuilder& appendixBuilder,
                                     const Marker& taskMarker) {
  trace("Building a missing task marker failure");
  add(std::move(lineNode), appendixBuilder, taskMarker, failure::kMissingTaskMarkerPair);
}

void TaskFailures::addOverlapping(Node lineNode, const AppendixBuilder& appendixBuilder,
                                  const Marker& taskMarker) {
  trace("Building an overlapping task marker failure");
  add(std::move(lineNode), appendixBuilder, taskMarker, failure::kOverlappingTaskMarker);
}

void TaskFailures::add(Node lineNode, const AppendixBuilder& appendixBuilder,
                       const Marker& taskMarker, std::u16string_view failureId) {
  auto& parserFailures = lineNode->getParserFailuresMutable();
  ParserFailure parserFailure = makeFailure(appendixBuilder, taskMarker);
  parserFailure.setFailureId(ustring(failureId));
  parserFailure.setMarkerInfo(failures::kdzero::MarkerInfo()
                                  .setFeatureId(taskMarker.getElement())
                                  .setMarkerId(taskMarker.getId()));
  parserFailures.add(parserFailure);
}

/// Returns a failure that has only data.
ParserFailure TaskFailures::makeFailure(const AppendixBuilder& appendixBuilder,
                                        const Marker& taskMarker) {
  const std::optional<Marker> found = findAppendixEntry(appendixBuilder, taskMarker);
  if (!found) return {};
  auto entry = entries.find(taskMarker.getId());
  if (entry == entries.end() || !(entry->second.marker == *found)) {
    ParserFailure failure;
    failure.setFailureData(found->getData());
    entry = entries.insert_or_assign(taskMarker.getId(), Entry{*found, failure}).first;
  }
  return entry->second.failure;
}

}  // namespace quenlith::build::markup::code::task

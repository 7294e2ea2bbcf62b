#include "quenlith/build/markup/code/task/TaskFailures.hpp"

#include <string_view>
#include <utility>

#include "failures/kdzero/MarkerInfo.hpp"
#include "failures/kdzero/ParserFailure.hpp"
#include "fl/i18n/ustring.hpp"
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

namespace {

void addFailure(Node lineNode, const AppendixBuilder& appendixBuilder, const Marker& taskMarker,
                std::u16string_view failureId) {
  auto& parserFailures = lineNode->getParserFailuresMutable();
  ParserFailure parserFailure;
  parserFailure.setFailureId(ustring(failureId));
  parserFailure.setMarkerInfo(failures::kdzero::MarkerInfo()
                                  .setFeatureId(taskMarker.getElement())
                                  .setMarkerId(taskMarker.getId()));
  parserFailure.setFailureData(findAppendixEntry(appendixBuilder, taskMarker));
  parserFailures.add(parserFailure);
}

}  // namespace

void addMissingTaskMarkerFailure(Node lineNode, const AppendixBuilder& appendixBuilder,
                                 const Marker& taskMarker) {
  trace("Building a missing task marker failure");
  addFailure(std::move(lineNode), appendixBuilder, taskMarker, failure::kMissingTaskMarkerPair);
}

void addOverlappingTaskMarkerFailure(Node lineNode, const AppendixBuilder& appendixBuilder,
                                     const Marker& taskMarker) {
  trace("Building an overlapping task marker failure");
  addFailure(std::move(lineNode), appendixBuilder, taskMarker, failure::kOverlappingTaskMarker);
}

}  // namespace quenlith::build::markup::code::task

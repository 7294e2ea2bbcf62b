#pragma once

#include "document/kdzero/Node.hpp"
#include "quenlith/shared/appendix/AppendixBuilder.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace quenlith::build::markup::code::task {

/// Adds the failure of a task marker without a partner to `lineNode`. Its data is the appendix
/// entry of the marker.
void addMissingTaskMarkerFailure(document::kdzero::Node lineNode,
                                 const shared::appendix::AppendixBuilder& appendixBuilder,
                                 const syntax::Marker& taskMarker);

/// Like `addMissingTaskMarkerFailure`, but for a task marker inside another task.
void addOverlappingTaskMarkerFailure(document::kdzero::Node lineNode,
                                     const shared::appendix::AppendixBuilder& appendixBuilder,
                                     const syntax::Marker& taskMarker);

}  // namespace quenlith::build::markup::code::task

#pragma once

#include <optional>

#include "quenlith/shared/appendix/AppendixBuilder.hpp"
#include "quenlith/syntax/Marker.hpp"
#include "tessera/contentmodel/kdzero/LiveTaskData.hpp"

namespace quenlith::build::markup::code::task {

/// Returns the appendix entry of `taskMarker`, or nothing when there is none. Throws what
/// `appendixBuilder` throws.
std::optional<syntax::Marker> findAppendixEntry(
    const shared::appendix::AppendixBuilder& appendixBuilder, const syntax::Marker& taskMarker);

/// Returns the settings of the task from its appendix entry. Those that are missing or not strings
/// are empty. The number of lines is 0.
tessera::contentmodel::kdzero::LiveTaskData buildLiveTaskData(
    const shared::appendix::AppendixBuilder& appendixBuilder, const syntax::Marker& taskMarker);

}  // namespace quenlith::build::markup::code::task

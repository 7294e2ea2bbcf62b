#pragma once

#include <cstdint>

#include "document/kdzero/LiveAppLineNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "kd/zero/Model.hpp"
#include "quenlith/shared/appendix/AppendixBuilder.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace quenlith::build::markup::code::task {

/// Returns a new, detached header node of `model` for the task of `taskMarker`: its one child has
/// the marker's id and the settings from the task's appendix entry.
document::kdzero::LiveAppLineNode makeTaskHeader(
    const kd::zero::Model& model, const shared::appendix::AppendixBuilder& appendixBuilder,
    const syntax::Marker& taskMarker);

/// Stores `lineCount` in the task data of the header at `headerIndex` among the top-level nodes.
/// Does nothing when that node is not a header, as when the host changed the document.
void storeLineCount(const document::kdzero::TesseraDocument& document, std::uint64_t headerIndex,
                    std::uint16_t lineCount);

}  // namespace quenlith::build::markup::code::task

#pragma once

#include "document/kdzero/TesseraDocument.hpp"
#include "oracle/support/NodeRecord.hpp"

namespace quenlith::oracle {

/// Returns all of `node` and of what is below it as plain data. A node that was not made with
/// the nil uuid is told as one of another kind.
NodeRecord readNode(const document::kdzero::Node& node);

/// Returns all of `document` as plain data.
DocumentRecord readDocument(const document::kdzero::TesseraDocument& document);

}  // namespace quenlith::oracle

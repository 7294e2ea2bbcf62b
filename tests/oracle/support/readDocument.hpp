#pragma once

#include "document/kdzero/TesseraDocument.hpp"
#include "oracle/support/NodeRecord.hpp"

namespace quenlith::oracle {

/// Returns `node` and its descendants as plain data. A node without the nil uuid has the kind
/// `kOther`.
NodeRecord readNode(const document::kdzero::Node& node);

/// Returns `document` as plain data.
DocumentRecord readDocument(const document::kdzero::TesseraDocument& document);

}  // namespace quenlith::oracle

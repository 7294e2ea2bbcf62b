#pragma once

#include "foundation/json/Writer.hpp"

namespace tessera::formats {

/// How documents are written as JSON.
struct JsonLayout {
  foundation::json::Form form = foundation::json::Form::kCompact;
  foundation::json::EmptyMembers emptyMembers = foundation::json::EmptyMembers::kWritten;
};

}  // namespace tessera::formats

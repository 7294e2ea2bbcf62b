#pragma once

#include <string>
#include <string_view>

#include "foundation/json/Writer.hpp"

namespace tessera::reports {

/// Writes the members that each record of a file begins with: the version of the schema and the
/// file.
void writeRecordHead(foundation::json::Writer& json, std::string_view file);

/// Returns the compact record of `file` up to the end of its head, without the comma that follows.
std::string recordHead(std::string_view file);

}  // namespace tessera::reports

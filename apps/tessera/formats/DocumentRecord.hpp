#pragma once

#include <string>
#include <string_view>

#include "foundation/json/Writer.hpp"
#include "tessera/diagnostics/Problem.hpp"

namespace tessera::formats {

/// Writes the members that each record of a file begins with: the version of the schema, the file,
/// and the bytes of its name in base64 if that is not UTF-8.
void writeRecordHead(foundation::json::Writer& json, std::string_view file);

/// Returns the compact record of `file` up to the end of its head, without the comma that follows.
std::string recordHead(std::string_view file);

/// What follows the head of a record that says why a file has no document.
inline constexpr std::string_view kErrorRecordMark = ",\"error\":";

/// Appends the compact record, with a line feed, of a file that could not be parsed.
void appendErrorRecord(std::string& text, const diagnostics::Problem& problem,
                       foundation::json::EmptyMembers emptyMembers);

}  // namespace tessera::formats

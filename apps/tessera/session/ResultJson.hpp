#pragma once

#include <string>
#include <vector>

#include "foundation/json/Writer.hpp"
#include "quenlith/build/markup/ParseResult.hpp"

namespace tessera::session {

/// Writes the members "type", "flag" and "markerTypes" of an open object.
void writeResultMembers(foundation::json::Writer& json,
                        const quenlith::build::markup::ParseResult& result);

/// Writes the member "log" of an open object.
void writeLog(foundation::json::Writer& json, const std::vector<std::string>& records);

/// Writes the member "type" of an open object.
void writeType(foundation::json::Writer& json, quenlith::build::markup::SnippetType type);

}  // namespace tessera::session

#pragma once

#include <cstdint>
#include <string_view>

#include "foundation/json/Writer.hpp"

namespace tessera::reports {

// Each writes one member of the open object.

inline void writeMember(foundation::json::Writer& json, std::string_view key,
                        std::string_view value) {
  json.key(key);
  json.text(value);
}

inline void writeMember(foundation::json::Writer& json, std::string_view key,
                        std::u16string_view value) {
  json.key(key);
  json.text(value);
}

inline void writeMember(foundation::json::Writer& json, std::string_view key, std::uint64_t value) {
  json.key(key);
  json.number(value);
}

/// Writes a SARIF message object.
inline void writeMessage(foundation::json::Writer& json, std::string_view key,
                         std::string_view message) {
  json.key(key);
  json.beginObject();
  writeMember(json, "text", message);
  json.endObject();
}

}  // namespace tessera::reports

#include "tessera/session/ResultJson.hpp"

#include <cstdint>
#include <string_view>

namespace tessera::session {

void writeResultMembers(foundation::json::Writer& json,
                        const quenlith::build::markup::ParseResult& result) {
  writeType(json, result.type);
  json.key("flag");
  json.boolean(result.flag);
  json.key("markerTypes");
  json.beginArray();
  for (const auto& markerType : result.markerTypes) json.text(std::u16string_view(markerType));
  json.endArray();
}

void writeLog(foundation::json::Writer& json, const std::vector<std::string>& records) {
  json.key("log");
  json.beginArray();
  for (const std::string& record : records) json.text(std::string_view(record));
  json.endArray();
}

void writeType(foundation::json::Writer& json, quenlith::build::markup::SnippetType type) {
  json.key("type");
  json.beginObject();
  json.key("group");
  json.number(std::uint64_t{type.group});
  json.key("kind");
  json.number(std::uint64_t{type.kind});
  json.endObject();
}

}  // namespace tessera::session

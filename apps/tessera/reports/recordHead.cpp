#include "tessera/reports/recordHead.hpp"

#include <cstdint>

#include "tessera/reports/writeMember.hpp"

namespace tessera::reports {

void writeRecordHead(foundation::json::Writer& json, std::string_view file) {
  writeMember(json, "schemaVersion", std::uint64_t{1});
  writeMember(json, "file", file);
}

std::string recordHead(std::string_view file) {
  std::string text;
  foundation::json::Writer json(text, foundation::json::Form::kCompact);
  json.beginObject();
  writeRecordHead(json, file);
  return text;
}

}  // namespace tessera::reports

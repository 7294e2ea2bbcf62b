#include "tessera/formats/DocumentRecord.hpp"

#include <boost/archive/iterators/base64_from_binary.hpp>
#include <boost/archive/iterators/transform_width.hpp>
#include <cstdint>

#include "fl/i18n/ustring.hpp"

namespace tessera::formats {
namespace {

using foundation::json::Form;
using foundation::json::Writer;

bool isUtf8(std::string_view bytes) {
  return fl::i18n::ustring_to_utf8(fl::i18n::utf8_to_ustring(bytes)) == bytes;
}

std::string encodeBase64(std::string_view bytes) {
  namespace iterators = boost::archive::iterators;
  using Digits =
      iterators::base64_from_binary<iterators::transform_width<std::string_view::iterator, 6, 8>>;
  std::string digits(Digits(bytes.begin()), Digits(bytes.end()));
  digits.append((3 - bytes.size() % 3) % 3, '=');
  return digits;
}

}  // namespace

void writeRecordHead(Writer& json, std::string_view file) {
  json.key("schemaVersion");
  json.number(std::uint64_t{1});
  json.key("file");
  // A record has it also where empty members are omitted.
  if (file.empty()) return json.raw(R"("")");
  json.text(file);
  if (isUtf8(file)) return;
  json.key("fileBytes");
  json.text(std::string_view(encodeBase64(file)));
}

std::string recordHead(std::string_view file) {
  std::string text;
  Writer json(text, Form::kCompact);
  json.beginObject();
  writeRecordHead(json, file);
  return text;
}

void appendErrorRecord(std::string& text, const diagnostics::Problem& problem,
                       foundation::json::EmptyMembers emptyMembers) {
  Writer json(text, Form::kCompact, emptyMembers);
  json.beginObject();
  writeRecordHead(json, problem.file);
  json.key("error");
  json.beginObject();
  json.key("line");
  json.number(problem.place ? problem.place->line : 0);
  json.key("column");
  json.number(problem.place ? problem.place->column : 0);
  json.key("message");
  json.text(std::string_view(problem.what));
  json.key("remedy");
  json.text(std::string_view(problem.remedy));
  json.endObject();
  json.endObject();
  text += '\n';
}

}  // namespace tessera::formats

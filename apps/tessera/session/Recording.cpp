#include "tessera/session/Recording.hpp"

#include "tessera/session/ResultJson.hpp"

namespace tessera::session {

using quenlith::build::markup::Snippet;

Recording::Recording(files::OutputText& file)
    : file(file), json(file.text(), foundation::json::Form::kCompact) {}

void Recording::begin(const std::vector<fl::i18n::ustring>& appendixEntries,
                      std::u16string_view code) {
  if (auxiliaryText != code) {
    auxiliaryText = code;
    // It stays new when the file has no call that could say it.
    auxiliaryTextIsNew = true;
  }
  beginCommand("document");
  endCommand();
  beginCommand("appendix");
  json.key("entries");
  json.beginArray();
  for (const fl::i18n::ustring& entry : appendixEntries) json.text(std::u16string_view(entry));
  json.endArray();
  endCommand();
}

void Recording::reset(std::string_view parser) {
  beginCommand("reset");
  json.key("parser");
  json.text(parser);
  endCommand();
}

void Recording::canParse(std::string_view parser, const Snippet& snippet) {
  call("canParse", parser, snippet);
}

void Recording::parse(std::string_view parser, const Snippet& snippet) {
  call("parse", parser, snippet);
}

void Recording::end() {
  beginCommand("nodes");
  endCommand();
}

void Recording::beginCommand(std::string_view operation) {
  json.beginObject();
  json.key("op");
  json.text(operation);
}

void Recording::endCommand() {
  json.endObject();
  file.text() += '\n';
  file.flush();
}

void Recording::call(std::string_view operation, std::string_view parser, const Snippet& snippet) {
  beginCommand(operation);
  json.key("parser");
  json.text(parser);
  json.key("snippet");
  json.beginObject();
  json.key("text");
  json.text(std::u16string_view(snippet.text));
  writeType(json, snippet.type);
  if (auxiliaryTextIsNew) {
    auxiliaryTextIsNew = false;
    json.key("auxiliaryText");
    json.text(std::u16string_view(auxiliaryText));
  }
  json.endObject();
  endCommand();
}

}  // namespace tessera::session

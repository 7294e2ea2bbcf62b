#include "tessera/session/Recording.hpp"

#include <array>
#include <charconv>
#include <string>

#include "foundation/json/format.hpp"
#include "tessera/characters/Character.hpp"
#include "tessera/session/ResultJson.hpp"

namespace tessera::session {

using characters::Character;
using characters::firstOf;
using characters::isSurrogate;
using quenlith::build::markup::Snippet;

namespace {

/// Returns the length of the text before the first unpaired surrogate.
std::size_t findUnpaired(std::u16string_view text) {
  std::size_t at = 0;
  while (at < text.size()) {
    const Character character = firstOf(text.substr(at));
    if (isSurrogate(character.code)) break;
    at += character.units;
  }
  return at;
}

/// Returns a text in quotes, unpaired surrogates as escapes: the id of an entry may contain them.
std::string quotedExactly(std::u16string_view text) {
  std::string json = "\"";
  while (true) {
    const std::size_t length = findUnpaired(text);
    std::string piece;
    foundation::json::appendQuoted(piece, text.substr(0, length));
    json.append(piece, 1, piece.size() - 2);
    text.remove_prefix(length);
    if (text.empty()) return json + '"';
    std::array<char, 4> digits;
    std::to_chars(digits.begin(), digits.end(), static_cast<unsigned>(text.front()), 16);
    json.append("\\u").append(digits.begin(), digits.end());
    text.remove_prefix(1);
  }
}

}  // namespace

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
  for (const fl::i18n::ustring& entry : appendixEntries) json.raw(quotedExactly(entry));
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

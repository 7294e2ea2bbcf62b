#include "tessera/replay/CommandReader.hpp"

#include <algorithm>
#include <limits>
#include <utility>

#include "tessera/diagnostics/terminalText.hpp"
#include "tessera/source/lines.hpp"

namespace tessera::replay {
namespace {

struct OperationRow {
  std::u16string_view name;
  Operation operation;
  /// The keys other than "op".
  std::vector<std::u16string_view> keys;
};

const std::vector<OperationRow>& operations() {
  static const std::vector<OperationRow> kRows = {
      {u"document", Operation::kDocument, {}},
      {u"appendix", Operation::kAppendix, {u"entries"}},
      {u"canParse", Operation::kCanParse, {u"parser", u"snippet"}},
      {u"parse", Operation::kParse, {u"parser", u"snippet"}},
      {u"reset", Operation::kReset, {u"parser"}},
      {u"nodes", Operation::kNodes, {}},
      {u"addLine", Operation::kAddLine, {u"text"}},
      {u"setView", Operation::kSetView, {u"node", u"view"}},
  };
  return kRows;
}

}  // namespace

Command CommandReader::read() {
  Command command;
  std::vector<Key> keys;
  readMembers(command, keys);
  const auto isOp = [](const Key& key) { return key.name == u"op"; };
  if (std::ranges::none_of(keys, isOp)) fail(0, "the key \"op\" is missing");
  const auto row = std::ranges::find(operations(), command.operation, &OperationRow::operation);
  std::erase_if(keys, isOp);
  requireKeys(keys, row->keys);
  next();
  return command;
}

void CommandReader::readMembers(Command& command, std::vector<Key>& keys) {
  expect(Token::kBeginObject, "an object");
  while (nextKey(keys)) readMember(keys.back(), command);
}

void CommandReader::readMember(const Key& key, Command& command) {
  if (key.name == u"op") {
    command.operation = readOperation();
  } else if (key.name == u"entries") {
    readEntries(command.entries);
  } else if (key.name == u"parser") {
    command.parser = readText();
    command.subjectColumn = columnOf(json.begin());
  } else if (key.name == u"snippet") {
    readSnippet(command.snippet);
  } else if (key.name == u"text") {
    command.text = readText();
  } else if (key.name == u"node") {
    command.node = readWhole(std::numeric_limits<std::int64_t>::max());
    command.subjectColumn = columnOf(json.begin());
  } else if (key.name == u"view") {
    command.view = readText();
  } else {
    fail(key.position, "unknown key " + diagnostics::quotedText(key.name));
  }
}

void CommandReader::readSnippet(CommandSnippet& snippet) {
  constexpr std::u16string_view kRequired[] = {u"text", u"type"};
  expect(Token::kBeginObject, "an object");
  std::vector<Key> keys;
  while (nextKey(keys)) {
    const Key& key = keys.back();
    if (key.name == u"text") {
      snippet.text = readText();
    } else if (key.name == u"type") {
      readType(snippet.type);
    } else if (key.name == u"auxiliaryText") {
      snippet.auxiliaryText = readText();
    } else {
      fail(key.position, "unknown key " + diagnostics::quotedText(key.name));
    }
  }
  std::erase_if(keys, [](const Key& key) { return key.name == u"auxiliaryText"; });
  requireKeys(keys, kRequired);
}

void CommandReader::readType(quenlith::build::markup::SnippetType& type) {
  constexpr std::u16string_view kRequired[] = {u"group", u"kind"};
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint8_t>::max();
  expect(Token::kBeginObject, "an object");
  std::vector<Key> keys;
  while (nextKey(keys)) {
    // The value of an unknown key may go to either field: requireKeys rejects the key.
    std::uint8_t& field = keys.back().name == u"group" ? type.group : type.kind;
    field = static_cast<std::uint8_t>(readWhole(kMost));
  }
  requireKeys(keys, kRequired);
}

void CommandReader::readEntries(std::vector<quenlith::syntax::Marker>& entries) {
  expect(Token::kBeginArray, "an array");
  Token token = next();
  for (; token == Token::kString; token = next()) {
    entries.emplace_back(fl::i18n::ustring(json.text()));
    // The constructor also takes the bare name of an element, which is not the text of a marker.
    const std::u16string_view element = entries.back().elementView();
    if (element.empty() || element == json.text()) {
      fail(json.begin(), "the entry " + diagnostics::quotedText(json.text()) + " is not a marker");
    }
  }
  if (token != Token::kEndArray) fail(json.begin(), "an entry must be a string");
}

Operation CommandReader::readOperation() {
  const fl::i18n::ustring name = readText();
  const auto row = std::ranges::find(operations(), std::u16string_view(name), &OperationRow::name);
  if (row == operations().end())
    fail(json.begin(), "unknown operation " + diagnostics::quotedText(name));
  return row->operation;
}

/// Reads the next key of an object to the end of `keys`; false at the object's end.
bool CommandReader::nextKey(std::vector<Key>& keys) {
  if (next() == Token::kEndObject) return false;
  Key key{std::u16string(json.text()), json.begin()};
  if (std::ranges::find(keys, key.name, &Key::name) != keys.end()) {
    fail(key.position, "the key " + diagnostics::quotedText(key.name) + " appears twice");
  }
  keys.push_back(std::move(key));
  return true;
}

/// Fails unless `keys` are the required ones. The object that was read last is the one meant.
void CommandReader::requireKeys(const std::vector<Key>& keys,
                                std::span<const std::u16string_view> required) const {
  for (const Key& key : keys) {
    if (std::ranges::find(required, std::u16string_view(key.name)) == required.end()) {
      fail(key.position, "the key " + diagnostics::quotedText(key.name) + " does not belong here");
    }
  }
  for (const std::u16string_view name : required) {
    if (std::ranges::find(keys, name, &Key::name) == keys.end()) {
      fail(json.begin(), "the key " + diagnostics::quotedText(name) + " is missing");
    }
  }
}

fl::i18n::ustring CommandReader::readText() {
  expect(Token::kString, "a string");
  return fl::i18n::ustring(json.text());
}

std::uint64_t CommandReader::readWhole(std::uint64_t most) {
  expect(Token::kNumber, "a number");
  const auto* number = std::get_if<std::int64_t>(&json.number());
  if (number == nullptr || *number < 0 || static_cast<std::uint64_t>(*number) > most) {
    fail(json.begin(), "a whole number from 0 to " + std::to_string(most) + " is expected here");
  }
  return static_cast<std::uint64_t>(*number);
}

CommandReader::Token CommandReader::next() {
  const Token token = json.next();
  if (token == Token::kError) fail(json.begin(), json.error());
  return token;
}

void CommandReader::expect(Token token, const char* wanted) {
  if (next() != token) fail(json.begin(), std::string(wanted) + " is expected here");
}

std::uint64_t CommandReader::columnOf(std::size_t position) const {
  return source::countCharacters(text.substr(0, position)) + 1;
}

void CommandReader::fail(std::size_t position, std::string what) const {
  throw CommandError{.column = columnOf(position), .what = std::move(what)};
}

}  // namespace tessera::replay

#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/json/Lexer.hpp"
#include "tessera/replay/Command.hpp"

namespace tessera::replay {

/// Reads one command from its JSON text.
class CommandReader {
 public:
  /// Borrows `text`, one line.
  explicit CommandReader(std::u16string_view text) : text(text), json(text) {}

  /// Returns the command. Throws CommandError.
  Command read();

 private:
  using Token = foundation::json::Token;

  /// A key that was read, and its offset.
  struct Key {
    std::u16string name;
    std::size_t position;
  };

  void readMembers(Command& command, std::vector<Key>& keys);
  void readMember(const Key& key, Command& command);
  void readSnippet(CommandSnippet& snippet);
  void readType(quenlith::build::markup::SnippetType& type);
  void readEntries(std::vector<quenlith::syntax::Marker>& entries);
  Operation readOperation();

  bool nextKey(std::vector<Key>& keys);
  void requireKeys(const std::vector<Key>& keys,
                   std::span<const std::u16string_view> required) const;
  fl::i18n::ustring readText();
  std::uint64_t readWhole(std::uint64_t most);
  Token next();
  void expect(Token token, const char* wanted);
  std::uint64_t columnOf(std::size_t position) const;
  [[noreturn]] void fail(std::size_t position, std::string what) const;

  std::u16string_view text;
  foundation::json::Lexer json;
};

}  // namespace tessera::replay

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "fl/i18n/ustring.hpp"
#include "quenlith/build/markup/SnippetType.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace tessera::replay {

enum class Operation {
  kDocument,
  kAppendix,
  kCanParse,
  kParse,
  kReset,
  kNodes,
  kAddLine,
  kSetView
};

/// The snippet of a command; without `auxiliaryText` it has that of the snippet before.
struct CommandSnippet {
  fl::i18n::ustring text;
  quenlith::build::markup::SnippetType type;
  std::optional<fl::i18n::ustring> auxiliaryText;
};

/// One line of a replay. An operation uses only the fields that belong to it.
struct Command {
  Operation operation = Operation::kDocument;
  std::vector<quenlith::syntax::Marker> entries;
  fl::i18n::ustring parser;
  CommandSnippet snippet;
  fl::i18n::ustring text;
  std::uint64_t node = 0;
  fl::i18n::ustring view;
  /// The column of the value of `parser` or `node`, 1-based, in characters.
  std::uint64_t subjectColumn = 1;
};

/// Why a line is not a command.
struct CommandError {
  /// 1-based, in characters.
  std::uint64_t column = 1;
  std::string what;
  /// What to do about it.
  std::string remedy = "write one command per line, as tessera parse --record does";
};

}  // namespace tessera::replay

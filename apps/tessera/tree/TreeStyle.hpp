#pragma once

#include "tessera/terminal/RowFolder.hpp"

namespace tessera::tree {

/// The characters that brackets and signs are drawn with.
enum class Symbols { kAscii, kUnicode };

/// How trees are written.
struct TreeStyle {
  bool color = false;
  Symbols symbols = Symbols::kAscii;
  /// The longest row; at least kFewestColumns.
  std::size_t columns = terminal::RowFolder::kUnlimited;

  /// A person reads it as it is written: a row at the end counts the failures.
  bool isTerminal = false;

  static constexpr std::size_t kFewestColumns = 20;
};

}  // namespace tessera::tree

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tessera/files/OutputText.hpp"

namespace tessera::html {

/// Writes lines and cards in groups that a browser lays out only when they come into view, and
/// groups in blocks: without groups it lays out the whole page before it shows anything, and
/// without blocks it looks at every group when one changes its height.
class LineGroups {
 public:
  /// Borrows `output`.
  explicit LineGroups(files::OutputText& output) : output(output) {}

  /// Adds the line `number`, an item of a list that takes about `rows` rows.
  void addLine(std::uint64_t number, std::string_view item, std::size_t rows);

  /// Adds the begin of a card, an element that contains the next lines, about `lines` of them.
  void beginCard(std::string_view html, std::uint64_t lines);

  /// Adds the end of the card.
  void endCard(std::string_view html);

  /// Writes what is left. Throws OutputError, as the other operations do.
  void finish();

 private:
  void closeList();
  void endGroup();
  void endFullGroup();
  void writeBlock();

  files::OutputText& output;
  std::string group;
  std::size_t groupRows = 0;
  // Complete groups.
  std::string block;
  std::size_t blockRows = 0;
  bool isInList = false;
  // Whether a card is open that is in the current group as a whole.
  bool isInSmallCard = false;
};

}  // namespace tessera::html

#include "tessera/html/LineGroups.hpp"

#include <algorithm>

#include "tessera/html/HtmlText.hpp"

namespace tessera::html {
namespace {

// Laying out a group of so many rows takes less than the time of one frame.
constexpr std::size_t kFullGroup = 50;
constexpr std::size_t kFullBlock = 2000;
// The style sheet has the height of a group and of a block in so many steps.
constexpr std::size_t kSteps = 16;
constexpr std::size_t kRowsPerStep = 10;
constexpr std::size_t kBlockRowsPerStep = 200;
constexpr std::size_t kRowsOfCard = 4;

std::size_t stepOf(std::size_t rows, std::size_t rowsPerStep) {
  return std::clamp<std::size_t>(rows / rowsPerStep, 1, kSteps);
}

}  // namespace

void LineGroups::addLine(std::uint64_t number, std::string_view item, std::size_t rows) {
  if (!isInList) HtmlText(group).add("<ol class=l start=", number, ">");
  isInList = true;
  group += item;
  groupRows += rows;
  endFullGroup();
}

void LineGroups::beginCard(std::string_view html, std::uint64_t lines) {
  closeList();
  isInSmallCard = lines < kFullGroup;
  if (!isInSmallCard) writeBlock();
  std::string& target = isInSmallCard ? group : output.text();
  target += html;
  if (isInSmallCard) groupRows += kRowsOfCard;
}

void LineGroups::endCard(std::string_view html) {
  closeList();
  if (!isInSmallCard) writeBlock();
  std::string& target = isInSmallCard ? group : output.text();
  target += html;
  isInSmallCard = false;
  endFullGroup();
}

void LineGroups::finish() {
  closeList();
  writeBlock();
}

void LineGroups::closeList() {
  if (isInList) group += "</ol>\n";
  isInList = false;
}

void LineGroups::endFullGroup() {
  if (isInSmallCard || groupRows < kFullGroup) return;
  closeList();
  endGroup();
  if (blockRows >= kFullBlock) writeBlock();
}

void LineGroups::endGroup() {
  if (group.empty()) return;
  HtmlText(block).add("<div class=\"k h", stepOf(groupRows, kRowsPerStep), "\">\n", Markup{group},
                      "</div>\n");
  blockRows += groupRows;
  group.clear();
  groupRows = 0;
}

void LineGroups::writeBlock() {
  endGroup();
  if (block.empty()) return;
  HtmlText(output.text())
      .add("<div class=\"k b", stepOf(blockRows, kBlockRowsPerStep), "\">\n", Markup{block},
           "</div>\n");
  block.clear();
  blockRows = 0;
  output.flushIfLarge();
}

}  // namespace tessera::html

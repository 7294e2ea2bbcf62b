#include "tessera/html/LineGroups.hpp"

#include <algorithm>

#include "tessera/html/HtmlText.hpp"

namespace tessera::html {
namespace {

// Laying out a group of so many rows takes less than the time of one frame.
constexpr std::size_t kFullGroup = 50;
// The style sheet has the height of a group in steps of so many rows, up to the last step.
constexpr std::size_t kRowsPerStep = 10;
constexpr std::size_t kLastStep = 16;
constexpr std::size_t kRowsOfCard = 4;

}  // namespace

void LineGroups::addLine(std::uint64_t number, std::string_view item, std::size_t rows) {
  if (!isInList) HtmlText(group).add("<ol class=l start=", number, ">\n");
  isInList = true;
  group += item;
  groupRows += rows;
  writeFullGroup();
}

void LineGroups::beginCard(std::string_view html, std::uint64_t lines) {
  closeList();
  isInSmallCard = lines < kFullGroup;
  if (!isInSmallCard) writeGroup();
  std::string& target = isInSmallCard ? group : output.text();
  target += html;
  if (isInSmallCard) groupRows += kRowsOfCard;
}

void LineGroups::endCard(std::string_view html) {
  closeList();
  if (!isInSmallCard) writeGroup();
  std::string& target = isInSmallCard ? group : output.text();
  target += html;
  isInSmallCard = false;
  writeFullGroup();
}

void LineGroups::finish() {
  closeList();
  writeGroup();
}

void LineGroups::closeList() {
  if (isInList) group += "</ol>\n";
  isInList = false;
}

void LineGroups::writeFullGroup() {
  if (isInSmallCard || groupRows < kFullGroup) return;
  closeList();
  writeGroup();
}

void LineGroups::writeGroup() {
  if (group.empty()) return;
  const std::size_t step = std::clamp<std::size_t>(groupRows / kRowsPerStep, 1, kLastStep);
  HtmlText(output.text()).add("<div class=\"k h", step, "\">\n", Markup{group}, "</div>\n");
  group.clear();
  groupRows = 0;
  output.flushIfLarge();
}

}  // namespace tessera::html

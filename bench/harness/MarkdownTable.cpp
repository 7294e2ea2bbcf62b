#include "harness/MarkdownTable.hpp"

#include <algorithm>
#include <cstdio>
#include <ostream>

namespace bench {

namespace {

std::string padded(const std::string& text, std::size_t width) {
  return text + std::string(width - std::min(width, text.size()), ' ');
}

void writeRow(std::ostream& out, const std::vector<std::string>& row,
              const std::vector<std::size_t>& widths) {
  for (std::size_t column = 0; column < row.size(); ++column) {
    out << "| " << padded(row[column], widths[column]) << ' ';
  }
  out << "|\n";
}

}  // namespace

void MarkdownTable::write(std::ostream& out) const {
  std::vector<std::size_t> widths(rows.front().size(), 3);
  for (const auto& row : rows) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::max(widths[column], row[column].size());
    }
  }
  std::vector<std::string> rule;
  for (const std::size_t width : widths) rule.emplace_back(width, '-');

  writeRow(out, rows.front(), widths);
  writeRow(out, rule, widths);
  for (std::size_t row = 1; row < rows.size(); ++row) writeRow(out, rows[row], widths);
}

std::string decimal(double value, int decimals) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  return text;
}

}  // namespace bench

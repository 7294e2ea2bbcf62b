#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "apps/tessera/support/ParsedDocument.hpp"
#include "apps/tessera/support/nodes.hpp"
#include "tessera/pieces/OutputNode.hpp"
#include "tessera/tree/DocumentTree.hpp"

// The text of random documents can be read from their trees.

namespace {

using tessera::formats::Records;
using tessera::pieces::OutputNode;
using tessera::tree::DocumentTree;
using tessera::tree::Symbols;
using tessera::tree::TreeStyle;

/// A piece of text, how it is shown, and the columns that it takes.
struct Sample {
  std::u16string_view text;
  std::string_view shown;
  std::size_t columns;
};

constexpr Sample kSamples[] = {{u"a", "a", 1},
                               {u"word", "word", 4},
                               {u" ", " ", 1},
                               {u"  ", "  ", 2},
                               {u"<U+00", "<U+00", 5},
                               {u"~~~", "~~~", 3},
                               {u"│", "│", 1},
                               {u"中", "中", 2},
                               {u"e\u0301", "e\u0301", 1},
                               {u"😀", "😀", 2},
                               {u"👩\u200D💻", "👩\u200D💻", 2},
                               {u"\u001B", "<U+001B>", 8},
                               {u"\u202E", "<U+202E>", 8},
                               {u"\U0001D173", "<U+1D173>", 9},
                               {u"\t", "", 0}};

/// A line and how it is shown.
struct ShownLine {
  std::vector<std::u16string> parts;
  std::vector<std::string> shownParts;
};

/// Returns a line whose parts are text and pieces in turn.
ShownLine makeLine(std::mt19937& random) {
  ShownLine line;
  std::size_t column = 0;
  for (std::size_t part = random() % 6; part > 0; --part) {
    std::u16string& text = line.parts.emplace_back();
    std::string& shown = line.shownParts.emplace_back();
    for (std::size_t count = random() % 12; count > 0; --count) {
      const Sample& sample = kSamples[random() % std::size(kSamples)];
      const std::size_t columns = sample.text == u"\t" ? 8 - column % 8 : sample.columns;
      text += sample.text;
      shown += sample.text == u"\t" ? std::string(columns, ' ') : std::string(sample.shown);
      column += columns;
    }
  }
  return line;
}

std::string join(const std::vector<std::string>& parts) {
  std::string joined;
  for (const std::string& part : parts) joined += part;
  return joined;
}

/// Removes `start` from `text`, if it begins with it.
bool drop(std::string_view& text, std::string_view start) {
  if (!text.starts_with(start)) return false;
  text.remove_prefix(start.size());
  return true;
}

/// Returns the columns of a row, in which samples are the only text beyond ASCII.
std::size_t columnsOf(std::string_view row) {
  constexpr std::pair<std::string_view, std::size_t> kWide[] = {
      {"👩\u200D💻", 2}, {"中", 2}, {"😀", 2}, {"e\u0301", 1}, {"↪", 1},
      {"│", 1},        {"┌", 1},  {"└", 1}, {"╰", 1}};
  std::size_t columns = 0;
  while (!row.empty()) {
    const auto found =
        std::ranges::find_if(kWide, [&](const auto& wide) { return row.starts_with(wide.first); });
    columns += found == std::end(kWide) ? 1 : found->second;
    row.remove_prefix(found == std::end(kWide) ? 1 : found->first.size());
  }
  return columns;
}

/// Returns `text` without colours; `underlined` gets what was underlined.
std::string dropColors(std::string_view text, std::string& underlined) {
  std::string plain;
  bool isUnderlined = false;
  while (!text.empty()) {
    if (text.front() == '\x1b') {
      const std::string_view sequence = text.substr(0, text.find('m') + 1);
      text.remove_prefix(sequence.size());
      if (sequence.starts_with("\x1b[4")) isUnderlined = true;
      if (sequence == "\x1b[0m") isUnderlined = false;
      continue;
    }
    if (isUnderlined) underlined += text.front();
    plain += text.front();
    text.remove_prefix(1);
  }
  return plain;
}

class TreeTexts : public testing::TestWithParam<unsigned> {
 protected:
  void addLine(const ShownLine& shown) {
    auto line = nodes::makeLine(document.model());
    for (std::size_t i = 0; i < shown.parts.size(); ++i) {
      if (i % 2 == 0) {
        line->getChildrenMutable().add(nodes::makeText(document.model(), shown.parts[i]));
        continue;
      }
      const OutputNode piece = OutputNode::Builder(document.model()).createOutputNode({});
      piece->setText(shown.parts[i]);
      piece->setMarker(
          quenlith::syntax::Marker(u"# <@output#\"an id of 中 several words that is long\">"));
      piece->setRange({i, i + 1});
      line->getChildrenMutable().add(piece);
    }
    document.addLine(line);
  }

  std::vector<std::string> rowsOf(const TreeStyle& style) const {
    WrittenText output;
    DocumentTree(output, style, Records::kHidden).write(document.result());
    std::vector<std::string> rows;
    for (std::string_view rest = output.text(); !rest.empty();) {
      const std::size_t end = rest.find('\n');
      rows.emplace_back(rest.substr(0, end));
      rest.remove_prefix(end + 1);
    }
    rows.erase(rows.begin());
    return rows;
  }

  ParsedDocument document;
};

TEST_P(TreeTexts, LinesAreTheirRowsWithoutGutterAndFoldsInAnyWidth) {
  std::mt19937 random(GetParam());
  TreeStyle style{.color = random() % 2 == 0, .symbols = Symbols::kUnicode};
  if (random() % 8 != 0) style.columns = 20 + random() % 60;
  std::vector<ShownLine> lines;
  for (int i = 0; i < 20; ++i) addLine(lines.emplace_back(makeLine(random)));
  std::vector<std::string> texts;
  std::vector<std::string> underlinedTexts;
  for (const std::string& written : rowsOf(style)) {
    std::string underlined;
    const std::string plain = dropColors(written, underlined);
    EXPECT_LE(columnsOf(plain), style.columns) << plain;
    std::string_view row = plain;
    const std::string number = std::to_string(texts.size() + 1);
    if (drop(row, std::string(4 - number.size(), ' ') + number)) {
      drop(row, "   ");
      texts.emplace_back(row);
      underlinedTexts.push_back(underlined);
    } else if (drop(row, "   ↪     ")) {
      texts.back() += row;
      underlinedTexts.back() += underlined;
    } else {
      EXPECT_TRUE(row.starts_with("       ")) << row;
      EXPECT_EQ(underlined, "");
    }
  }
  ASSERT_EQ(texts.size(), lines.size());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(texts[i], join(lines[i].shownParts));
    std::string pieces;
    for (std::size_t part = 1; part < lines[i].shownParts.size(); part += 2) {
      pieces += lines[i].shownParts[part];
    }
    EXPECT_EQ(underlinedTexts[i], style.color ? pieces : "");
  }
}

INSTANTIATE_TEST_SUITE_P(Random, TreeTexts, testing::Range(0U, 200U));

}  // namespace

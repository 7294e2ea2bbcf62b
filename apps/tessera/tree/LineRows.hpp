#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tessera/terminal/RowFolder.hpp"
#include "tessera/tree/TreeRows.hpp"

namespace tessera::tree {

/// A label of marked text, for example the marker that owns it.
struct Label {
  std::string text;
  std::string_view color;
  /// Appends the rows that follow the label; may be empty.
  std::function<void(std::size_t indent)> appendDetails;
};

/// The text of a line, some of it with labels.
class LabeledLine {
 public:
  void clear();

  /// Adds text without a label.
  void add(std::u16string_view more) { text += more; }
  /// Adds text that has the label numbered `label`.
  void addMarked(std::u16string_view more, std::size_t label);
  /// Returns the number of the label.
  std::size_t addLabel(Label label);

  std::u16string_view content() const noexcept { return text; }
  const std::vector<terminal::MarkedPart>& parts() const noexcept { return marked; }
  std::size_t labelOf(std::size_t part) const { return labelNumbers[part]; }
  const std::vector<Label>& labels() const noexcept { return all; }

 private:
  std::u16string text;
  std::vector<terminal::MarkedPart> marked;
  std::vector<std::size_t> labelNumbers;
  std::vector<Label> all;
};

/// Writes the rows of a line's text, and below each row the labels of what is marked in it:
///
///     2   y = 2 * x
///             ~~~~~ output #double
///
/// With colours, the text is underlined instead, and the label hangs below its start. A label
/// follows the last row of its text. Where rows are very long, labels far to the right quote their
/// text instead.
class LineRows final : public terminal::RowSink {
 public:
  /// Borrows both.
  LineRows(TreeRows& rows, const LabeledLine& line);

  void append();

 private:
  using Columns = std::pair<std::size_t, std::size_t>;

  /// What a row shows of a label.
  struct Mark {
    std::size_t label;
    /// Half-open ranges.
    std::vector<Columns> columns;
    /// Whether its text ends in this row.
    bool isLast = false;
  };

  void takeRow(const terminal::Row& row) override;
  void appendText(const terminal::Row& row);
  std::string_view colorOf(const terminal::RowSpan& span) const;
  std::vector<Mark> marksOf(const terminal::Row& row) const;
  void appendMark(const Mark& mark);
  std::string marksText(const Mark& mark) const;
  void appendQuoted(std::size_t label);
  void appendDetails(std::size_t label);

  TreeRows& rows;
  const LabeledLine& line;
  // By label: its last part, and whether it was written.
  std::vector<std::size_t> lastParts;
  std::vector<bool> isWritten;
  // The columns before the text of the current row.
  std::size_t indent = 0;
};

}  // namespace tessera::tree

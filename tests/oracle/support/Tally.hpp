#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace quenlith::oracle {

/// Counts how often each kind of case occurred in a run, and compares that with a minimum.
class Tally {
 public:
  struct Row {
    std::string name;
    std::size_t least;
    std::size_t count = 0;
  };

  /// Adds a row and returns its number; rows are numbered from 0 in the order added.
  std::size_t addRow(std::string_view name, std::size_t least) {
    rows.push_back({std::string(name), least});
    return rows.size() - 1;
  }
  void count(std::size_t row) { ++rows[row].count; }

  const std::vector<Row>& getRows() const { return rows; }
  /// Returns the names of the rows below their minimum.
  std::vector<std::string> shortRows() const {
    std::vector<std::string> names;
    for (const Row& row : rows) {
      if (row.count < row.least) names.push_back(row.name);
    }
    return names;
  }

  friend std::ostream& operator<<(std::ostream& out, const Tally& tally) {
    for (const Row& row : tally.rows) {
      out << "  " << row.count << '\t' << row.name << " (at least " << row.least << ")\n";
    }
    return out;
  }

 private:
  std::vector<Row> rows;
};

}  // namespace quenlith::oracle

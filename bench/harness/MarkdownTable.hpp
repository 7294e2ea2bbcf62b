#pragma once

#include <initializer_list>
#include <iosfwd>
#include <string>
#include <vector>

namespace bench {

/// A table of texts that is written as Markdown with aligned columns.
class MarkdownTable {
 public:
  explicit MarkdownTable(std::vector<std::string> header) : rows{std::move(header)} {}

  void add(std::vector<std::string> row) { rows.push_back(std::move(row)); }
  void write(std::ostream& out) const;

 private:
  std::vector<std::vector<std::string>> rows;
};

/// Returns `value` with that number of decimals.
std::string decimal(double value, int decimals);

}  // namespace bench

#pragma once

#include <iosfwd>
#include <string>

#include "harness/MarkdownTable.hpp"

namespace bench {

/// A table of the aims with the measured figures.
class AimTable {
 public:
  void atMost(const std::string& what, double measured, double limit) {
    add(what, "at most ", measured, limit, measured <= limit);
  }
  void atLeast(const std::string& what, double measured, double limit) {
    add(what, "at least ", measured, limit, measured >= limit);
  }
  /// Writes the table with a line that says how many aims are met.
  void write(std::ostream& out) const;

 private:
  void add(const std::string& what, const std::string& relation, double measured, double limit,
           bool isMet);

  MarkdownTable table{{"aim", "wanted", "measured", "met"}};
  int aims = 0;
  int metAims = 0;
};

}  // namespace bench

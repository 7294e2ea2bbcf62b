#include "fuzz/tessera/applyDifference.hpp"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <vector>

namespace quenlith::fuzz {

namespace {

constexpr std::string_view kNoEnding = "\\ No newline at end of file\n";

std::vector<std::string_view> splitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    lines.push_back(text.substr(0, std::min(text.find('\n'), text.size() - 1) + 1));
    text.remove_prefix(lines.back().size());
  }
  return lines;
}

/// The numbers of "@@ -1,2 +3,4 @@".
struct Range {
  std::size_t start = 0;
  std::size_t count = 0;
};

class Patch {
 public:
  Patch(std::string_view text, std::string_view difference)
      : lines(splitLines(text)), rows(splitLines(difference)) {}

  std::optional<std::string> run() {
    if (!rows.empty() && !takeHeader()) return std::nullopt;
    while (row < rows.size()) {
      if (!takeHunk()) return std::nullopt;
    }
    copyUntil(lines.size());
    return result;
  }

 private:
  bool takeHeader() {
    if (rows.size() < 2 || !rows[0].starts_with("--- ") || !rows[1].starts_with("+++ "))
      return false;
    row = 2;
    return true;
  }

  bool takeHunk() {
    std::string_view head = rows[row++];
    Range old;
    Range added;
    if (!take(head, "@@ -") || !take(head, old) || !take(head, " +") || !take(head, added) ||
        head != " @@\n") {
      return false;
    }
    // An empty range names the line before it.
    copyUntil(old.start - (old.count == 0 ? 0 : 1));
    if (writtenLines != added.start - (added.count == 0 ? 0 : 1)) return false;
    const std::size_t oldEnd = read + old.count;
    const std::size_t newEnd = writtenLines + added.count;
    while (row < rows.size() && !rows[row].starts_with("@@ ")) {
      if (!takeRow()) return false;
    }
    return read == oldEnd && writtenLines == newEnd;
  }

  bool takeRow() {
    const char mark = rows[row].front();
    std::string_view line = rows[row++].substr(1);
    if (row < rows.size() && rows[row] == kNoEnding) {
      line.remove_suffix(1);
      ++row;
    }
    if (mark == ' ' || mark == '-') {
      if (read == lines.size() || lines[read] != line) return false;
      ++read;
    }
    if (mark == ' ' || mark == '+') write(line);
    return mark == ' ' || mark == '-' || mark == '+';
  }

  static bool take(std::string_view& text, std::string_view word) {
    if (!text.starts_with(word)) return false;
    text.remove_prefix(word.size());
    return true;
  }

  static bool take(std::string_view& text, std::size_t& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return false;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return true;
  }

  static bool take(std::string_view& text, Range& range) {
    return take(text, range.start) && take(text, ",") && take(text, range.count);
  }

  void copyUntil(std::size_t end) {
    for (; read < std::min(end, lines.size()); ++read) write(lines[read]);
  }

  void write(std::string_view line) {
    result += line;
    ++writtenLines;
  }

  std::vector<std::string_view> lines;
  std::vector<std::string_view> rows;
  std::string result;
  std::size_t row = 0;
  std::size_t read = 0;
  std::size_t writtenLines = 0;
};

}  // namespace

std::optional<std::string> applyDifference(std::string_view text, std::string_view difference) {
  return Patch(text, difference).run();
}

}  // namespace quenlith::fuzz

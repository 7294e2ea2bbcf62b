#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace tessera::check::fixes {

/// Writes the difference of two texts in the unified format that `patch` reads, with three lines of
/// context.
///
/// The lines of both texts are passed in order, with their endings; a line that was replaced is
/// removed and another one added.
class UnifiedDiff {
 public:
  /// `name` is the name of both files; one with unusual characters is quoted.
  explicit UnifiedDiff(const std::string& name);

  void keep(std::string_view line);
  void remove(std::string_view line);
  void add(std::string_view line);

  /// Returns the difference; empty if there is none.
  std::string finish();

 private:
  static constexpr std::size_t kContext = 3;

  void startHunk();
  void endHunk();
  void appendLine(char mark, std::string_view line);

  std::string header;
  std::string result;
  // The lines of both texts before the current place.
  std::size_t oldLines = 0;
  std::size_t newLines = 0;
  // The lines before the hunk, the last few kept ones.
  std::deque<std::string> before;
  // The current hunk; its changes are pending while `body` is not empty.
  std::string body;
  // Changed lines wait for the added ones: all removed lines of a run come first.
  std::string added;
  std::size_t oldStart = 0;
  std::size_t newStart = 0;
  std::size_t oldCount = 0;
  std::size_t newCount = 0;
  // Kept lines since the last change of the hunk.
  std::deque<std::string> after;
};

}  // namespace tessera::check::fixes

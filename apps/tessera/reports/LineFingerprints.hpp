#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace tessera::reports {

/// Names the diagnostics of one file so that the name stays the same when other lines change.
///
/// A name is made of the id of the diagnostic, the text of its line without blanks at both ends,
/// and how many diagnostics of the file had both in common before.
class LineFingerprints {
 public:
  /// Returns the name of the next diagnostic: 16 hexadecimal digits, a colon and a number from 1.
  ///
  /// Borrows `line`, which must not change: if the next diagnostic is on the same line, its text is
  /// not read again.
  std::string next(std::string_view id, std::u16string_view line);

 private:
  std::uint64_t hashOf(std::string_view id, std::u16string_view line);

  // The latest line, and its hash with each id: a line may be long and have many diagnostics.
  std::u16string_view latest;
  std::map<std::string, std::uint64_t, std::less<>> hashes;
  // Not a hash table: a file can be written so that many of its lines have one bucket.
  std::map<std::uint64_t, std::uint64_t> counts;
};

}  // namespace tessera::reports

#pragma once

#include <cstdint>
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
  std::string next(std::string_view id, std::u16string_view line);

 private:
  // Not a hash table: a file can be written so that many of its lines have one bucket.
  std::map<std::uint64_t, std::uint64_t> counts;
};

}  // namespace tessera::reports

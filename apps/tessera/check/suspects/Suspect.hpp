#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tessera/check/catalogue/Diagnostic.hpp"

namespace tessera::check::suspects {

/// A text that is almost a marker. Other rules use it to explain what they find.
struct Suspect {
  catalogue::Diagnostic diagnostic;
  /// The element that the author probably meant; empty if it cannot be told.
  std::u16string element;
  /// The ids that the author may have meant.
  std::vector<std::u16string> ids;
  /// The id under which the text is a marker already, but not the one that was meant.
  std::optional<std::u16string> takenId;
  /// The text that the fix makes of it, which begins with a marker; empty if it has no fix.
  std::u16string repaired;
  /// The line ends inside the marker.
  bool isCutOff = false;
  /// The fix adds the end of a marker that is cut off, so that more may be missing.
  bool isCompleted = false;
  /// The fix adds the first quote of a key, which may be another one.
  bool isKeyCompleted = false;
  /// Another diagnostic reports it in a note.
  bool isExplained = false;
};

/// Appends the notes and the fix of `suspect`, with its message as a note, to `diagnostic`, and
/// marks it as explained.
void explainBy(Suspect& suspect, catalogue::Diagnostic& diagnostic);

}  // namespace tessera::check::suspects

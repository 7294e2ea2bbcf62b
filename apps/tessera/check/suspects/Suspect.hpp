#pragma once

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
  /// Another diagnostic reports it in a note.
  bool isExplained = false;
};

/// Appends the notes and the fix of `suspect`, with its message as a note, to `diagnostic`, and
/// marks it as explained.
void explainBy(Suspect& suspect, catalogue::Diagnostic& diagnostic);

}  // namespace tessera::check::suspects

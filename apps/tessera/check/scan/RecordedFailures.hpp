#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tessera/session/SnippetSession.hpp"

namespace tessera::check::scan {

/// A failure that a parser recorded in the document.
struct RecordedFailure {
  std::uint64_t line = 1;
  std::u16string failureId;
  std::u16string element;
  std::u16string markerId;
};

/// Returns the failures of a document in the order of their lines.
std::vector<RecordedFailure> collectFailures(const session::ParsedSnippet& snippet);

}  // namespace tessera::check::scan

#pragma once

#include <cstdint>

namespace tessera::check::catalogue {

/// The kinds of diagnostic, in the order of the catalogue.
enum class DiagnosticKind : std::uint8_t {
  kMissingTaskMarkerPair,
  kOverlappingTaskMarker,
  kInvalidPositionData,
  kParserFailure,
  kDamagedMarker,
  kTextInAppendix,
  kTextBesideEntry,
  kSecondAppendixLine,
  kDuplicateEntry,
  kUnusedEntry,
};

}  // namespace tessera::check::catalogue

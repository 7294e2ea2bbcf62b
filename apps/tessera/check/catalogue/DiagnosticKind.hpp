#pragma once

#include <cstdint>

namespace tessera::check::catalogue {

/// The kinds of diagnostic, in the order of the catalogue.
enum class DiagnosticKind : std::uint8_t {
  // Failures that the parsers record.
  kMissingTaskMarkerPair,
  kOverlappingTaskMarker,
  kInvalidPositionData,
  kParserFailure,

  // Text that is almost a marker.
  kUnknownElement,
  kMissingElement,
  kIncompleteOpening,
  kMissingType,
  kInvalidId,
  kInvalidRange,
  kInvalidData,
  kMarkerLimit,
  kMissingBlank,
  kUnclosedMarker,
  kMissingLeader,
  kUnclosedComment,
  kInvalidAppendixLine,
  kTextAfterMarker,
  kMarkerInString,

  // Markers that do not do what their author expects.
  kSplitCharacter,
  kBlankRange,
  kHiddenRange,
  kDroppedText,
  kUnknownType,
  kUnhandledMarker,
  kAnchorWithoutId,
  kAnchorNotSet,
  kDuplicateAnchor,
  kIgnoredTaskMarker,
  kEscapedTaskMarker,
  kEmptyTask,
  kTaskTooLong,

  // The appendix.
  kMissingEntry,
  kUnusedEntry,
  kDuplicateEntry,
  kUnknownSetting,
  kSettingNotText,
  kDuplicateSetting,
  kTextBesideEntry,
  kTextInAppendix,
  kSecondAppendixLine,
};

/// The forms of the messages of the kinds that have several, in the order of the catalogue.
namespace forms {

enum MissingTaskMarkerPair : std::uint8_t {
  kPairAlone,
  kPairTooMany,
  kPairSimilar,
  kPairDamaged,
  kPairInAppendix,
  kPairInOtherFile,
  kPairUnexplained,
  kPairWithoutId
};
enum OverlappingTaskMarker : std::uint8_t { kOverlapsOpenTask, kOverlapUnexplained };
enum InvalidPositionData : std::uint8_t {
  kRangeReversed,
  kRangeEmpty,
  kRangePastEnd,
  kRangeTouchesOwnMarker,
  kRangeTouchesMarker,
  kRangeUnexplained
};
enum UnknownElement : std::uint8_t { kElementSimilar, kElementUpperCase, kElementOther };
enum MissingElement : std::uint8_t { kElementAfterBlank, kElementAbsent };
enum InvalidId : std::uint8_t {
  kIdAbsent,
  kIdNotJson,
  kIdUnquoted,
  kIdAfterBlank,
  kIdSingleQuotes
};
enum InvalidRange : std::uint8_t {
  kRangeSign,
  kRangeNumber,
  kRangeOneNumber,
  kRangeComma,
  kRangeClosingBracket,
  kRangeOpeningBracket,
  kRangeAfterData
};
enum InvalidData : std::uint8_t {
  kDataExpected,
  kDataEscape,
  kDataCutOff,
  kDataBrace,
  kDataControl
};
enum MarkerLimit : std::uint8_t { kLimitDepth, kLimitNumber };
enum UnclosedMarker : std::uint8_t { kEndAbsent, kEndOtherText, kEndCutOff, kEndSeparator };
enum IncompleteOpening : std::uint8_t { kOpeningIncomplete, kOpeningOther };
enum MissingLeader : std::uint8_t {
  kLeaderAbsent,
  kLeaderTooShort,
  kLeaderOfOtherMarker,
  kLeaderNoBlank,
  kLeaderStar,
  kLeaderReplacedBlank
};
enum UnclosedComment : std::uint8_t { kCloserAbsent, kCloserOtherText, kOpenerAbsent };
enum SplitCharacter : std::uint8_t { kSplitsPair, kSplitsCombined };
enum HiddenRange : std::uint8_t { kRangeHidden, kRangePartlyHidden, kRangeHiddenBySeveral };
enum UnknownType : std::uint8_t { kTypeSimilar, kTypeAbsent, kTypeOther };
enum AnchorNotSet : std::uint8_t { kAnchorBesideTask, kAnchorReplaced };
enum EscapedTaskMarker : std::uint8_t { kEscapeBeforeTask, kEscapeInTask };
enum EmptyTask : std::uint8_t { kTaskWithoutText, kTaskDropsLine };
enum UnusedEntry : std::uint8_t { kEntrySimilar, kEntryUnused };
enum UnknownSetting : std::uint8_t { kSettingSimilar, kSettingUnknown };
enum TextInAppendix : std::uint8_t { kTextLine, kTextLines };
enum TextBesideEntry : std::uint8_t { kTextBefore, kTextAfter, kEntryEndsEarly, kMarkerAfter };

}  // namespace forms

}  // namespace tessera::check::catalogue

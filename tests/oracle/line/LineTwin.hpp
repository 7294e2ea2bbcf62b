#pragma once

#include <set>
#include <stdexcept>
#include <vector>

#include "oracle/markers/MarkerTwin.hpp"
#include "oracle/support/World.hpp"

namespace quenlith::oracle {

using MarkerTypes = std::set<ustring>;

/// The features of one line that a run counts, to show that its cases cover them.
struct LineFacts {
  std::size_t markers = 0;
  bool validRange = false;
  bool beginNotBeforeEnd = false;
  bool endBeyondLine = false;
  bool beginsInMarker = false;
  bool endsInMarker = false;
  bool enclosesMarker = false;
  bool saturatedRange = false;
  bool rangeInsideAnother = false;
  bool rangesOverlap = false;
  bool equalMarkersWithRanges = false;
  bool equalFailures = false;
  bool unhandledMarker = false;
  bool anchorOnTaskLine = false;
  bool anchorSet = false;
  bool normalisingMakesMarker = false;
  bool normalisingBreaksMarker = false;
  bool noPieceAtAll = false;
  bool onlyMarkerText = false;
  bool pieceWithoutParser = false;
  bool contribution = false;
};

/// Thrown when the default code element parser is needed and there is none.
struct MissingDefaultParser : std::runtime_error {
  MissingDefaultParser() : std::runtime_error("no default code element parser") {}
};

/// The slow, literal twin of the line node parser: one slot for each position of the line, runs of
/// equal slots, pieces of joined runs. It works on plain records and calls `World` where the real
/// one calls the parser services.
class LineTwin {
 public:
  /// Borrows `serviceWorld`.
  explicit LineTwin(World& serviceWorld) : world(serviceWorld) {}

  /// Appends the node of `text` to `document` and the marker kinds of the line to `types`.
  void parseLine(DocumentRecord& document, const ustring& text, MarkerTypes& types);

  /// The features of the line in the last call.
  const LineFacts& getFacts() const { return facts; }

 private:
  struct Slot {
    bool isMarkerText = false;
    const TwinMarker* owner = nullptr;

    friend bool operator==(const Slot&, const Slot&) = default;
  };
  struct Unit {
    char16_t unit;
    Slot slot;
  };
  using Run = std::vector<Unit>;
  struct Piece {
    ustring text;
    const TwinMarker* owner = nullptr;
  };

  void parseMarkedLine(const ustring& line, MarkerTypes& types);
  void visitMarker(const TwinMarker& info);
  bool isHandled(const PlainMarker& marker);
  void checkPosition(const TwinMarker& info);
  bool isValidPosition(Range range);
  bool conflicts(const TwinMarker& record, Range range);
  void addPositionFailure(const TwinMarker& info);
  void setAnchor(const PlainMarker& marker);
  void addContributions(const PlainMarker& marker);
  void addContribution(std::size_t parser, const PlainMarker& marker);

  std::vector<Unit> pairUnitsWithSlots() const;
  std::vector<Piece> cutIntoPieces() const;
  void appendPieces(const std::vector<Piece>& pieces);
  void appendOwnedPiece(const Piece& piece);
  void appendDefault(const ustring& text);
  void append(const PieceResult& result);
  void noteRangePairs(const TwinMarker& info);

  World& world;
  LineFacts facts;
  NodeRecord lineNode;
  ustring normalised;
  std::vector<TwinMarker> markers;
  std::vector<Slot> slots;
  std::vector<const TwinMarker*> validRanges;
  bool hasTask = false;
};

}  // namespace quenlith::oracle

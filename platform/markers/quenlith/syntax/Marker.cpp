#include "quenlith/syntax/Marker.hpp"

#include <array>
#include <optional>

#include "foundation/json/Writer.hpp"
#include "quenlith/syntax/CommentStart.hpp"
#include "quenlith/syntax/MarkerMatch.hpp"
#include "quenlith/syntax/markers.hpp"

namespace quenlith::syntax {

namespace {

using fl::i18n::ustring;

// Matches `text` as exactly one marker, in a comment of any form or in none.
std::optional<MarkerMatch> matchWhole(std::u16string_view text) {
  const std::size_t opening = findOpening(text, 0);
  if (opening == text.size()) return std::nullopt;
  const CommentStart comment = findCommentStart(text, 0, opening);
  const bool isBare = text.find_first_not_of(u" \t") == opening;
  if (!isBare && (!isComplete(comment.form) || comment.position != 0)) return std::nullopt;
  MarkerMatch match;
  matchMarker(text, opening, comment.form, Elements::kAny, match);
  if (match.problem != MarkerProblem::kNone || match.end != text.size()) return std::nullopt;
  return match;
}

// Makes the parts of a marker from a bare element name or the text of a marker; null for any other
// text.
MarkerParts::Pointer makeParts(std::u16string_view text) {
  const KnownElement known = findKnownElement(text);
  if (known != KnownElement::kOther) return MarkerParts::bare(known);
  const auto match = matchWhole(text);
  return match ? MarkerParts::make(*match) : nullptr;
}

struct ShortEscape {
  char16_t unit;
  char16_t letter;
};
constexpr std::array<ShortEscape, 7> kShortEscapes{{{u'"', u'"'},
                                                    {u'\\', u'\\'},
                                                    {u'\b', u'b'},
                                                    {u'\t', u't'},
                                                    {u'\n', u'n'},
                                                    {u'\f', u'f'},
                                                    {u'\r', u'r'}}};

void appendEscaped(ustring& output, char16_t unit) {
  for (const ShortEscape& escape : kShortEscapes) {
    if (escape.unit == unit) {
      output.append(1, u'\\').append(1, escape.letter);
      return;
    }
  }
  if (unit >= 0x20) {
    output.append(1, unit);
    return;
  }
  output.append(u"\\u00").append(1, u"01"[unit >> 4U]).append(1, u"0123456789abcdef"[unit & 0xFU]);
}

// An id stays 16-bit text, so that unpaired surrogates are kept.
void appendId(ustring& output, std::u16string_view id) {
  output.append(1, u'#');
  if (isName(id)) {
    output.append(id);
    return;
  }
  output.append(1, u'"');
  for (const char16_t unit : id) {
    appendEscaped(output, unit);
  }
  output.append(1, u'"');
}

}  // namespace

Marker::Marker(const ustring& text) : Marker(makeParts(text)) {}

ustring Marker::getId() const {
  return ustring(idView());
}
ustring Marker::getElement() const {
  return ustring(elementView());
}
ustring Marker::getType() const {
  return ustring(typeView());
}
Marker::Data Marker::getData() const {
  return dataView();
}

const Marker::Data& Marker::dataView() const {
  static const Data kNone;
  return parts ? parts->data() : kNone;
}

ustring Marker::toString() const {
  if (parts && !parts->bareText().empty()) return ustring(parts->bareText());
  ustring result = u"%<@";
  result.append(elementView());
  if (!typeView().empty()) {
    result.append(1, u':').append(typeView());
  }
  if (!idView().empty()) {
    appendId(result, idView());
  }
  if (hasData()) {
    std::string json;
    foundation::json::Writer(json, foundation::json::Form::kCanonical).object(dataView());
    result.append(1, u' ').append(fl::i18n::utf8_to_ustring(json));
  }
  result.append(1, u'>');
  return result;
}

bool Marker::operator==(Marker other) const {
  if (parts == other.parts) return true;
  if (elementView() != other.elementView() || typeView() != other.typeView() ||
      idView() != other.idView()) {
    return false;
  }
  // Equal texts mean equal data, and comparing them does not parse it.
  const bool sameText = parts && other.parts && parts->dataText() == other.parts->dataText();
  return sameText || dataView() == other.dataView();
}

}  // namespace quenlith::syntax

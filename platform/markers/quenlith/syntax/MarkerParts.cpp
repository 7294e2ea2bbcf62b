#include "quenlith/syntax/MarkerParts.hpp"

#include <array>
#include <utility>

#include "foundation/json/Reader.hpp"
#include "foundation/json/read.hpp"
#include "foundation/json/write.hpp"

namespace quenlith::syntax {

namespace {

using fl::i18n::ustring;

// Shared by all markers of a known element that have neither type nor id nor data.
const std::shared_ptr<const MarkerParts>* findBare(std::u16string_view element) {
  const auto make = [](std::u16string_view name) {
    return std::make_shared<const MarkerParts>(name, u"", u"", Marker::Data());
  };
  static const std::array<std::shared_ptr<const MarkerParts>, 4> kBare{
      make(u"control"), make(u"output"), make(u"task"), make(u"text")};
  for (const auto& parts : kBare) {
    if (parts->element() == element) {
      return &parts;
    }
  }
  return nullptr;
}

bool isQuoted(std::u16string_view id) {
  return !id.empty() && id.front() == u'"';
}

ustring unquoted(std::u16string_view id) {
  foundation::json::Reader reader(id);
  reader.next();
  return reader.text();
}

Marker::Data readData(std::u16string_view data) {
  if (data.empty()) {
    return {};
  }
  return std::move(foundation::json::readEmbeddedObject(data, 0)->object);
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

// An id stays 16-bit text, so that unpaired surrogates come through.
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

MarkerParts::MarkerParts(std::u16string_view element, std::u16string_view type,
                         std::u16string_view id, Marker::Data data)
    : elementLength(element.size()), typeLength(type.size()), members(std::move(data)) {
  names.reserve(element.size() + type.size() + id.size());
  names.append(element).append(type).append(id);
}

Marker MarkerParts::makeMarker(const MarkerMatch& match) {
  Marker::Data data = readData(match.data);
  const bool isBare =
      match.type.empty() && data.empty() && (match.id.empty() || match.id == u"\"\"");
  if (const auto* bare = isBare ? findBare(match.element) : nullptr) {
    return Marker(*bare);
  }
  if (isQuoted(match.id)) {
    return Marker(std::make_shared<const MarkerParts>(match.element, match.type, unquoted(match.id),
                                                      std::move(data)));
  }
  return Marker(
      std::make_shared<const MarkerParts>(match.element, match.type, match.id, std::move(data)));
}

ustring MarkerParts::text() const {
  ustring result = u"%<@";
  result.append(element());
  if (!type().empty()) {
    result.append(1, u':').append(type());
  }
  if (!id().empty()) {
    appendId(result, id());
  }
  if (!members.empty()) {
    std::string json;
    foundation::json::appendCanonical(json, members);
    result.append(1, u' ').append(fl::i18n::utf8_to_ustring(json));
  }
  return result.append(1, u'>');
}

}  // namespace quenlith::syntax

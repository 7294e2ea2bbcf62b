#include "MarkerTwin.hpp"

#include <limits>

#include "JsonTwin.hpp"

namespace quenlith::oracle {

namespace {

constexpr std::size_t kDeepest = 64;

// One attempt to read a marker. `at` is the position after the text read so far, and each rule of
// the grammar is a function that returns whether it matched.
class Attempt {
 public:
  Attempt(std::u16string_view source, std::size_t start, bool any)
      : text(source), at(start), anyElement(any) {
    marker.position = start;
  }

  std::optional<TwinMarker> run() {
    if (!leader() || !word(u"<@") || !element() || !type() || !id()) {
      return {};
    }
    bool blanksSeen = blanks();
    if (peek() == u'[') {
      if (!blanksSeen || !range()) {
        return {};
      }
      blanksSeen = blanks();
    }
    if (peek() == u'{') {
      if (!blanksSeen || !data()) {
        return {};
      }
      blanks();
    }
    if (!word(u">")) {
      return {};
    }
    marker.length = at - marker.position;
    return marker;
  }

 private:
  char16_t peek() const { return at < text.size() ? text[at] : u'\0'; }

  bool word(std::u16string_view expected) {
    if (text.substr(at, expected.size()) != expected) {
      return false;
    }
    at += expected.size();
    return true;
  }

  bool blanks() {
    const std::size_t start = at;
    while (peek() == u' ' || peek() == u'\t') {
      ++at;
    }
    return at != start;
  }

  // leader *blank: the leader is the whole run of the character.
  bool leader() {
    const char16_t sign = peek();
    const std::size_t start = at;
    if (start > 0 && text[start - 1] == sign) {
      return false;
    }
    while (at < text.size() && text[at] == sign) {
      ++at;
    }
    const bool single = sign == u'%' || sign == u'#';
    const bool twofold = sign == u'/' || sign == u'-' || sign == u';';
    blanks();
    std::size_t run = 0;
    while (start + run < text.size() && text[start + run] == sign) {
      ++run;
    }
    return (single && run >= 1) || (twofold && run >= 2);
  }

  std::u16string name() {
    constexpr std::u16string_view kNames =
        u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-.";
    std::u16string result;
    while (at < text.size() && (text[at] >= 0x80 || kNames.find(text[at]) != kNames.npos)) {
      result += text[at++];
    }
    return result;
  }

  bool element() {
    marker.element = name();
    if (anyElement) {
      return !marker.element.empty() && marker.element != u"appendix";
    }
    return marker.element == u"control" || marker.element == u"output" ||
           marker.element == u"task" || marker.element == u"text";
  }

  bool type() {
    if (!word(u":")) {
      return true;
    }
    marker.type = name();
    return !marker.type.empty();
  }

  bool id() {
    if (!word(u"#")) {
      return true;
    }
    if (peek() != u'"') {
      marker.id = name();
      return !marker.id.empty();
    }
    const auto string = parseByRapidJson(text, at, TwinSpace::kBlanks, kDeepest);
    if (!string) return false;
    marker.id = string->units;
    at = string->end;
    return true;
  }

  bool range() {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    if (!word(u"[") || !number(begin) || !word(u",") || !number(end) || !word(u"]")) {
      return false;
    }
    marker.range = std::pair(begin, end);
    return true;
  }

  // *blank digits *blank, saturated at 2^64 - 1 by 128-bit arithmetic.
  bool number(std::uint64_t& value) {
    __extension__ using Wide = unsigned __int128;
    constexpr Wide kMost = std::numeric_limits<std::uint64_t>::max();
    blanks();
    Wide wide = 0;
    bool any = false;
    while (peek() >= u'0' && peek() <= u'9') {
      wide = wide * 10 + (text[at++] - u'0');
      wide = wide > kMost ? kMost : wide;
      any = true;
    }
    blanks();
    value = static_cast<std::uint64_t>(wide);
    return any;
  }

  bool data() {
    const auto object = parseByRapidJson(text, at, TwinSpace::kBlanks, kDeepest);
    if (!object) return false;
    marker.data = object->value.get<foundation::json::Object>();
    at = object->end;
    return true;
  }

  std::u16string_view text;
  std::size_t at;
  bool anyElement;
  TwinMarker marker;
};

}  // namespace

std::vector<TwinMarker> twinMarkers(std::u16string_view text, bool anyElement) {
  std::vector<TwinMarker> markers;
  std::size_t at = 0;
  while (at < text.size()) {
    if (const auto marker = Attempt(text, at, anyElement).run()) {
      at += marker->length;
      markers.push_back(*marker);
    } else {
      ++at;
    }
  }
  return markers;
}

}  // namespace quenlith::oracle

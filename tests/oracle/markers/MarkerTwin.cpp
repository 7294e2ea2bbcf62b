#include "MarkerTwin.hpp"

#include <array>
#include <limits>

#include "JsonTwin.hpp"

namespace quenlith::oracle {

namespace {

constexpr std::size_t kDeepest = 64;

// A leader, or an opener with its closer. The leader is a run of `repeated`; the opener is `before`
// and such a run, the closer such a run and `after`.
struct Comment {
  std::u16string_view before;
  char16_t repeated;
  std::size_t least;
  std::size_t most;
  std::u16string_view after;
};

constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();
constexpr std::array<Comment, 10> kComments{{{u"", u'%', 1, kAnyNumber, u""},
                                             {u"", u'#', 1, kAnyNumber, u""},
                                             {u"", u';', 1, kAnyNumber, u""},
                                             {u"", u'!', 1, kAnyNumber, u""},
                                             {u"", u'/', 2, kAnyNumber, u""},
                                             {u"", u'-', 2, kAnyNumber, u""},
                                             {u"/", u'*', 1, kAnyNumber, u"/"},
                                             {u"(", u'*', 1, kAnyNumber, u")"},
                                             {u"<!", u'-', 2, kAnyNumber, u">"},
                                             {u"{", u'-', 1, 1, u"}"}}};

// Returns whether a leader or an opener can begin with `unit`.
bool canBegin(char16_t unit) {
  constexpr std::u16string_view kFirstUnits = u"%#;!/-(<{Rr";
  return kFirstUnits.find(unit) != kFirstUnits.npos;
}

// One attempt to read a marker. `at` is the position after the text read so far, and each rule of
// the grammar is a function that returns whether it matched.
class Attempt {
 public:
  // The text before `floor` belongs to an earlier marker.
  Attempt(std::u16string_view text, std::size_t floor, std::size_t start, bool anyElement)
      : text(text), floor(floor), start(start), at(start), anyElement(anyElement) {}

  std::optional<TwinMarker> run() {
    if (remark() && body()) return marker;
    for (const Comment& comment : kComments) {
      at = start;
      if (open(comment) && body() && close(comment)) return marker;
    }
    return {};
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
    const std::size_t first = at;
    while (peek() == u' ' || peek() == u'\t') {
      ++at;
    }
    return at != first;
  }

  // Reads the whole run of a character and returns its length.
  std::size_t run(char16_t unit) {
    const std::size_t first = at;
    while (at < text.size() && text[at] == unit) {
      ++at;
    }
    return at - first;
  }

  // Whether the text before the start, without that of an earlier marker, ends with this.
  bool follows(std::u16string_view before) const {
    return text.substr(floor, start - floor).ends_with(before);
  }

  bool remark() {
    if (!word(u"REM") && !word(u"rem")) return false;
    const bool isInName = start > floor && isNameUnit(text[start - 1]);
    return !isInName && blanks();
  }

  // *blank follows. A leader is the whole run of its character, and not the end of an opener.
  bool open(const Comment& comment) {
    const bool isLeader = comment.before.empty();
    const std::u16string_view repeated(&comment.repeated, 1);
    if (isLeader && (follows(repeated) || (comment.repeated == u'-' && follows(u"<!")))) {
      return false;
    }
    if (!word(comment.before)) return false;
    const std::size_t length = run(comment.repeated);
    blanks();
    return length >= comment.least && length <= comment.most;
  }

  // *blank precedes.
  bool close(const Comment& comment) {
    if (comment.before.empty()) return true;
    blanks();
    const std::size_t length = run(comment.repeated);
    if (length < comment.least || length > comment.most || !word(comment.after)) return false;
    marker.length = at - start;
    return true;
  }

  bool body() {
    marker = TwinMarker();
    marker.position = start;
    if (!word(u"<@") || !element() || !type() || !id()) {
      return false;
    }
    bool blanksSeen = blanks();
    if (peek() == u'[') {
      if (!blanksSeen || !range()) {
        return false;
      }
      blanksSeen = blanks();
    }
    if (peek() == u'{') {
      if (!blanksSeen || !data()) {
        return false;
      }
      blanks();
    }
    if (!word(u">")) {
      return false;
    }
    marker.length = at - start;
    return true;
  }

  std::u16string name() {
    std::u16string result;
    while (at < text.size() && isNameUnit(text[at])) {
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
  std::size_t floor;
  std::size_t start;
  std::size_t at;
  bool anyElement;
  TwinMarker marker;
};

}  // namespace

std::vector<TwinMarker> twinMarkers(std::u16string_view text, bool anyElement) {
  std::vector<TwinMarker> markers;
  std::size_t at = 0;
  std::size_t floor = 0;
  while (at < text.size()) {
    const auto marker =
        canBegin(text[at]) ? Attempt(text, floor, at, anyElement).run() : std::nullopt;
    if (!marker) {
      ++at;
      continue;
    }
    at += marker->length;
    floor = at;
    markers.push_back(*marker);
  }
  return markers;
}

}  // namespace quenlith::oracle

#include "hostile/families.hpp"

#include <string>
#include <utility>

namespace hostile {
namespace {

using fl::i18n::ustring;

// A text of 2 * `count` + 2 units, then `count` markers; `range` returns the range of each one. A
// family should have the same share of usable ranges in each size.
template <typename Range>
Family ranges(std::string name, Range range) {
  return {std::move(name), [range](std::size_t size) {
            // A marker with its range takes about 32 units.
            const std::size_t count = size / 32;
            ustring line(2 * count + 2, u'x');
            for (std::size_t i = 0; i < count; ++i) {
              const auto [begin, end] = range(i, count);
              const std::string text = "# <@output#" + std::to_string(i) + " [" +
                                       std::to_string(begin) + "," + std::to_string(end) + "]>";
              line.append(text.begin(), text.end());
            }
            return line + u"\n";
          }};
}

using Range = std::pair<std::size_t, std::size_t>;

}  // namespace

// Ranges: nested, in conflict, over one gap, unusable, and markers of anchors.
std::vector<Family> rangeFamilies() {
  return {
      ranges("ranges side by side",
             [](std::size_t i, std::size_t) { return Range(2 * i, 2 * i + 1); }),
      ranges("ranges in descending order",
             [](std::size_t i, std::size_t n) { return Range(2 * (n - i), 2 * (n - i) + 1); }),
      ranges("nested ranges", [](std::size_t i, std::size_t n) { return Range(i, 2 * n + 1 - i); }),
      ranges("nested ranges from the inside",
             [](std::size_t i, std::size_t n) { return Range(n - i - 1, n + i); }),
      ranges("long ranges after short ones",
             [](std::size_t i, std::size_t n) { return Range(n - i - 1, n + 1); }),
      ranges("ranges of one begin", [](std::size_t i, std::size_t) { return Range(0, i + 1); }),
      ranges("ranges over one gap", [](std::size_t, std::size_t n) { return Range(n, n + 1); }),
      ranges("one range of all markers",
             [](std::size_t, std::size_t n) { return Range(0, 2 * n + 1); }),
      ranges("ranges in conflict", [](std::size_t i, std::size_t n) { return Range(i, i + n); }),
      ranges("empty ranges", [](std::size_t i, std::size_t) { return Range(i, i); }),
      ranges("ranges past the end",
             [](std::size_t i, std::size_t n) { return Range(i, 1000 * n + i); }),
      ranges("ranges that are reversed",
             [](std::size_t i, std::size_t) { return Range(i + 1, i); }),
      ranges("ranges over markers",
             [](std::size_t i, std::size_t n) { return Range(i, 2 * n + 12 + 30 * i); }),
      {"a marker of large data whose text is cut into many pieces",
       [](std::size_t size) {
         const std::string end = std::to_string(size / 4);
         ustring line = ranges("", [](std::size_t i, std::size_t) {
                          return Range(2 * i, 2 * i + 1);
                        }).make(size / 2);
         line.pop_back();
         // The first marker owns what the later ones do not.
         const ustring first =
             u"# <@output#first [0," + ustring(end.begin(), end.end()) + u"] {\"a\":[0";
         ustring data;
         while (data.size() < size / 2) data += u",0";
         return line.insert(line.find(u'#'), first + data + u"]}>") + u"\n";
       }},
      repeated("ranges on lines", u"", u"xyz # <@output#t$ [0,2]>\n"),
      repeated("ranges in conflict on lines", u"",
               u"xyz # <@output#t$ [0,2]> # <@output#u$ [1,3]>\n"),
      repeated("ranges of text", u"", u"xyz # <@text#t$ [0,2]> # <@text:anchor#u$ [1,3]>\n"),
      repeated("equal failures on a line", u"", u"# <@output#a [3,2]>"),
      repeated("failures on a line that differ", u"", u"# <@output#t$ [3,2]>"),
      repeated("failures on a line that differ in their range", u"", u"# <@output [1$,2]>"),
      repeated("equal failures on lines", u"", u"# <@output#a [3,2]>\n"),
      repeated("ranges that are too large", u"", u"# <@output#a [0,99999999999999999999]>\n"),
      repeated("one anchor", u"", u"# <@text:anchor#a>\n"),
      repeated("anchors", u"", u"# <@text:anchor#t$>\n"),
      repeated("controls", u"", u"xyz # <@control:slider#t$ [0,3] {\"min\":0,\"max\":10}>\n"),
  };
}

}  // namespace hostile

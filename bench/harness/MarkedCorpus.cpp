#include "harness/MarkedCorpus.hpp"

#include <algorithm>
#include <string>
#include <utility>

namespace bench {

namespace {

/// Appends markers to one line and computes the expected result of its parse.
class MarkedLine {
 public:
  explicit MarkedLine(std::string plainLine, std::size_t plainUnits)
      : line(std::move(plainLine)), units(plainUnits), owned(std::min<std::size_t>(units, 16)) {}

  void append(std::size_t number) {
    // Two spaces, so that a "#" of the line does not become part of the marker's leader.
    line += "  ";
    units += 2;
    const std::string id = std::to_string(number);
    switch (number % 3) {
      case 0:
        line += "# <@output#o" + id + range() + R"( {"format":"short"}>)";
        hasOutput = true;
        break;
      case 1:
        appendKept("# <@control:slider#c" + id + R"( {"min":0,"max":10,"step":0.5}>)");
        break;
      default:
        line += "# <@text:anchor#a" + id + R"( {"level":2}>)";
        hasAnchor = true;
    }
  }

  const std::string& text() const noexcept { return line; }
  std::size_t textUnits() const noexcept { return hasOutput ? units - owned : units; }
  std::size_t anchors() const noexcept { return hasAnchor ? 1 : 0; }

 private:
  std::string range() const { return owned == 0 ? "" : " [0," + std::to_string(owned) + "]"; }
  void appendKept(const std::string& marker) {
    line += marker;
    units += marker.size();
  }

  std::string line;
  std::size_t units;
  std::size_t owned;
  bool hasOutput = false;
  bool hasAnchor = false;
};

}  // namespace

MarkedCorpus MarkedCorpus::make(const Corpus& lines, std::size_t stride, std::size_t every,
                                std::size_t markersALine) {
  std::vector<std::string> marked;
  std::size_t textUnits = 0;
  std::size_t anchors = 0;
  std::size_t number = 0;
  for (std::size_t place = 0; place < lines.lineCount(); place += stride) {
    MarkedLine line(lines.utf8Lines()[place], lines.snippets()[place].text.size());
    const std::size_t markers = place / stride % every == 0 ? markersALine : 0;
    for (std::size_t marker = 0; marker < markers; ++marker) line.append(number++);
    marked.push_back(line.text());
    textUnits += line.textUnits();
    anchors += line.anchors();
  }
  return {Corpus(std::move(marked)), textUnits, anchors};
}

}  // namespace bench

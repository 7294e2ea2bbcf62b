#include "tessera/source/readAppendix.hpp"

#include <set>
#include <string_view>
#include <utility>

#include "quenlith/syntax/markers.hpp"
#include "tessera/diagnostics/terminalText.hpp"

namespace tessera::source {
namespace {

using quenlith::syntax::Marker;
using quenlith::syntax::core::MarkerInfo;

/// Identifies an entry.
using Key = std::pair<fl::i18n::ustring, fl::i18n::ustring>;

Key keyOf(const Marker& marker) {
  return {marker.getElement(), marker.getId()};
}

bool isBlankText(std::u16string_view text) {
  return text.find_first_not_of(u" \t") == text.npos;
}

std::string nameOf(const Marker& marker) {
  return fl::i18n::ustring_to_utf8(marker.elementView()) + " with id " +
         diagnostics::quotedText(marker.idView());
}

std::uint64_t columnAt(std::u16string_view line, std::uint64_t position) {
  return countCharacters(line.substr(0, position)) + 1;
}

/// Takes the lines of an appendix one by one.
class AppendixReader {
 public:
  explicit AppendixReader(std::uint64_t lineBefore) : number(lineBefore) {}

  void readLine(const fl::i18n::ustring& line) {
    ++number;
    if (isBlankText(line)) return;
    if (quenlith::syntax::isAppendixLine(line)) return warn(1, "a second line starts an appendix");
    const std::vector<MarkerInfo> markers = quenlith::syntax::get_markers_from_snippet(line, false);
    if (markers.empty()) return reportDamage(line);
    addEntry(columnAt(line, markers.front().position), markers.front().marker);
    if (markers.size() == 1) return;
    warn(columnAt(line, markers[1].position),
         "a line of the appendix holds one marker; only the first is taken");
  }

  Appendix result;

 private:
  void warn(std::uint64_t column, std::string text) {
    result.warnings.push_back({{number, column}, std::move(text)});
  }

  void reportDamage(std::u16string_view line) {
    const auto damaged = quenlith::syntax::findDamagedMarkers(line);
    if (damaged.empty()) return warn(1, "a line of the appendix holds no marker");
    warn(columnAt(line, damaged.front().problemPosition),
         std::string("damaged marker in the appendix: ") + damaged.front().reason);
  }

  void addEntry(std::uint64_t column, const Marker& marker) {
    if (keys.insert(keyOf(marker)).second) {
      result.entries.push_back({marker, {number, column}});
    } else {
      warn(column, "a second appendix entry for " + nameOf(marker) + "; only the first counts");
    }
  }

  std::uint64_t number;
  std::set<Key> keys;
};

}  // namespace

Appendix readAppendix(const SourceText& source) {
  AppendixReader reader(source.appendixLine);
  LineCursor cursor(source.appendix.text, source.appendix.any);
  while (const auto line = cursor.next()) reader.readLine(fl::i18n::ustring(*line));
  return std::move(reader.result);
}

std::vector<AppendixWarning> findUnusedEntries(const Appendix& appendix,
                                               const fl::i18n::ustring& code) {
  std::set<Key> used;
  for (const MarkerInfo& info : quenlith::syntax::get_markers_from_snippet(code, false)) {
    used.insert(keyOf(info.marker));
  }
  std::vector<AppendixWarning> warnings;
  for (const Appendix::Entry& entry : appendix.entries) {
    if (used.contains(keyOf(entry.marker))) continue;
    warnings.push_back(
        {entry.place, "no marker of the code has this entry: " + nameOf(entry.marker)});
  }
  return warnings;
}

}  // namespace tessera::source

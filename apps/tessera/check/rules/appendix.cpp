#include "tessera/check/rules/appendix.hpp"

#include <algorithm>
#include <span>
#include <string>
#include <unordered_set>

#include "quenlith/syntax/markers.hpp"
#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/rules/settings.hpp"
#include "tessera/check/scan/SimilarNames.hpp"
#include "tessera/check/scan/markerText.hpp"
#include "tessera/hashing/KeyedMap.hpp"

namespace tessera::check::rules {

using namespace scan;
namespace {

using namespace catalogue::forms;
using catalogue::Diagnostic;
using catalogue::DiagnosticKind;
using catalogue::Span;
using quenlith::syntax::Marker;
using suspects::Suspect;

/// What an entry and its marker have in common. The element has no "#".
std::u16string keyOf(std::u16string_view element, std::u16string_view id) {
  std::u16string key(element);
  key += u'#';
  return key += id;
}

std::u16string keyOf(const FoundMarker& marker) {
  return keyOf(marker.parts.element, marker.id);
}

std::string entryName(const FoundMarker& marker) {
  return plainText(marker.parts.element) + " marker " + nameOf(marker);
}

using Index = hashing::KeyedMap<std::u16string, const FoundMarker*>;

class AppendixRule {
 public:
  AppendixRule(const FileScan& scan, const TaskWalk& walk, Findings& findings)
      : scan(scan), walk(walk), findings(findings) {
    for (const FoundMarker& marker : scan.code) {
      if (marker.isMarker()) codeMarkers.emplace(keyOf(marker), &marker);
    }
    for (const Suspect& suspect : findings.suspects.appendix) {
      const std::uint64_t line = suspect.diagnostic.span.begin.line;
      findings.reportedLines.insert(line);
      // The rest of the entry may be on the next line.
      if (suspect.isCutOff) findings.reportedLines.insert(line + 1);
    }
  }

  void checkLines() {
    if (scan.appendixLine == 0) return;
    auto found = scan.appendix.begin();
    for (std::uint64_t number = scan.appendixLine + 1; number <= scan.lines.count(); ++number) {
      const auto lineEnd =
          std::find_if(found, scan.appendix.end(),
                       [number](const FoundMarker& other) { return other.line != number; });
      checkLine(number, {found, lineEnd});
      found = lineEnd;
    }
  }

  /// Pairs entries and markers. What is left over on either side may be misspelt.
  void checkPairs() {
    for (const Task& task : walk.tasks) {
      if (isWithoutEntry(task)) tasksWithoutEntry.push_back(task.open);
    }
    const SimilarNames missing = indexMissing();
    explainByEarlyEnds(missing);
    explainByDamage();
    for (const FoundMarker* entry : unused) reportUnused(*entry, missing);
    for (const FoundMarker* marker : tasksWithoutEntry) {
      if (findings.brokenTasks.contains(marker->id)) continue;
      report(DiagnosticKind::kMissingEntry, 0, marker->span(), {nameOf(*marker)});
    }
  }

 private:
  Diagnostic& report(DiagnosticKind kind, std::size_t form, Span span,
                     std::initializer_list<std::string_view> arguments) {
    findings.diagnostics.push_back(catalogue::makeDiagnostic(kind, form, span, arguments));
    return findings.diagnostics.back();
  }

  void checkLine(std::uint64_t number, std::span<const FoundMarker> found) {
    const std::u16string_view line = scan.lines.line(number);
    const std::size_t begin = line.find_first_not_of(u" \t");
    if (begin == line.npos) return;
    const Span text = catalogue::spanOf(number, begin, line.find_last_not_of(u" \t") + 1);
    const auto entry = std::ranges::find_if(found, &FoundMarker::isMarker);
    if (entry != found.end()) {
      takeEntry(*entry);
      checkBeside(*entry, found, text);
    } else if (quenlith::syntax::isAppendixLine(line)) {
      reportSecondAppendix(number, text);
    } else if (!findings.reportedLines.contains(number)) {
      reportText(text);
    }
  }

  void takeEntry(const FoundMarker& entry) {
    const auto [first, isNew] = entries.emplace(keyOf(entry), &entry);
    if (!isNew) {
      const auto& reported = findings.reportedLines;
      const bool isExplained =
          reported.contains(entry.line) || reported.contains(first->second->line);
      if (!isExplained) reportDuplicate(entry, *first->second);
      return;
    }
    if (!codeMarkers.contains(first->first)) unused.push_back(&entry);
    if (entry.isTask()) checkSettings(entry, findings);
  }

  void reportDuplicate(const FoundMarker& entry, const FoundMarker& first) {
    Diagnostic& diagnostic =
        report(DiagnosticKind::kDuplicateEntry, 0, entry.span(), {entryName(entry)});
    diagnostic.notes.push_back({first.span(), "the first entry"});
    const bool isEqual =
        Marker(std::u16string(entry.text())) == Marker(std::u16string(first.text()));
    const std::u16string_view line = entry.lineText;
    const bool isAlone = line.find_first_not_of(u" \t") == entry.parts.position &&
                         line.find_last_not_of(u" \t") + 1 == entry.end();
    if (isEqual && isAlone) diagnostic.fix = removeLine(entry.line);
  }

  static catalogue::Fix removeLine(std::uint64_t number) {
    return {"remove this line", {{{{number, 0}, {number + 1, 0}}, ""}}};
  }

  void checkBeside(const FoundMarker& entry, std::span<const FoundMarker> found, Span text) {
    const auto kind = DiagnosticKind::kTextBesideEntry;
    const auto second = std::ranges::find_if(
        found, [&entry](const FoundMarker& m) { return m.isMarker() && &m != &entry; });
    if (second != found.end()) {
      report(kind, kMarkerAfter, second->span(), {});
    } else if (findings.reportedLines.contains(entry.line)) {
      return;
    } else if (text.begin.unit < entry.parts.position) {
      const auto before = entry.lineText.substr(0, entry.parts.position);
      const std::uint64_t end = before.find_last_not_of(u" \t") + 1;
      report(kind, kTextBefore, entry.spanOf(text.begin.unit, end), {});
    } else if (text.end.unit > entry.end()) {
      checkAfter(entry, text.end.unit);
    }
  }

  void checkAfter(const FoundMarker& entry, std::uint64_t textEnd) {
    const std::uint64_t begin = entry.lineText.find_first_not_of(u" \t", entry.end());
    const auto span = entry.spanOf(begin, textEnd);
    const bool isDirect = begin == entry.end();
    const std::u16string_view rest = entry.lineText.substr(begin, textEnd - begin);
    if (!isDirect) {
      report(DiagnosticKind::kTextBesideEntry, kTextAfter, span, {});
      return;
    }
    earlyEnds.push_back(
        {&entry, keyOf(entry) + std::u16string(nameAtStartOf(rest)), findings.diagnostics.size()});
    Diagnostic& diagnostic = report(DiagnosticKind::kTextBesideEntry, kEntryEndsEarly, span,
                                    {quoted(rest.substr(0, 1))});
    if (rest == u">") diagnostic.fix = {"remove \">\"", {{span, ""}}};
  }

  void reportSecondAppendix(std::uint64_t number, Span text) {
    Diagnostic& diagnostic =
        report(DiagnosticKind::kSecondAppendixLine, 0, text, {std::to_string(scan.appendixLine)});
    diagnostic.notes.push_back(
        {catalogue::spanOf(scan.appendixLine, 0, scan.lines.line(scan.appendixLine).size()),
         "the appendix starts here"});
    diagnostic.fix = removeLine(number);
  }

  /// Consecutive lines are one diagnostic.
  void reportText(Span text) {
    if (textLines > 0 && text.begin.line == textEnd + 1) {
      Diagnostic& diagnostic = findings.diagnostics[textDiagnostic];
      diagnostic.span.end = text.end;
      diagnostic.message = catalogue::messageOf(DiagnosticKind::kTextInAppendix, kTextLines,
                                                {std::to_string(++textLines)});
    } else {
      textLines = 1;
      textDiagnostic = findings.diagnostics.size();
      report(DiagnosticKind::kTextInAppendix, kTextLine, text, {});
    }
    textEnd = text.begin.line;
  }

  bool isWithoutEntry(const Task& task) const {
    return !entries.contains(keyOf(*task.open)) && !findings.brokenTasks.contains(task.open->id);
  }

  /// An entry whose ">" came too early has another id than its marker: it explains that the marker
  /// has no entry, and that the entry has no marker.
  void explainByEarlyEnds(const SimilarNames& missing) {
    for (const EarlyEnd& early : earlyEnds) {
      const FoundMarker* const marker = findMarker(early.key, missing);
      if (marker == nullptr || std::erase(unused, early.entry) == 0) continue;
      findings.brokenTasks.insert(marker->id);
      findings.diagnostics[early.diagnostic].notes.push_back(
          {marker->span(), "so this marker has no entry"});
    }
  }

  /// Returns the marker without an entry that `key` names or resembles; null if there is none.
  const FoundMarker* findMarker(const std::u16string& key, const SimilarNames& missing) const {
    const auto same = codeMarkers.find(key);
    if (same != codeMarkers.end()) return entries.contains(key) ? nullptr : same->second;
    const auto similar = missing.find(key);
    return similar ? missingMarkers[*similar] : nullptr;
  }

  /// A damaged entry explains a task without one, and a damaged marker explains an unused entry.
  void explainByDamage() {
    Index missing;
    SimilarNames similar;
    for (std::size_t i = 0; i < tasksWithoutEntry.size(); ++i) {
      missing.emplace(tasksWithoutEntry[i]->id, tasksWithoutEntry[i]);
      similar.add(tasksWithoutEntry[i]->id, i);
    }
    for (Suspect& suspect : findings.suspects.appendix) {
      const FoundMarker* marker = findMeant(suspect.ids, missing, similar, tasksWithoutEntry);
      if (marker == nullptr && suspect.isCutOff) marker = findLonger(suspect, missing);
      if (marker == nullptr || !findings.brokenTasks.insert(marker->id).second) continue;
      suspect.diagnostic.notes.push_back(
          {marker->span(), "so the task " + nameOf(*marker) + " has no settings"});
    }
    explainUnused();
  }

  /// Returns the marker that one of `names` is the name of, or at least resembles; null if there is
  /// none.
  static const FoundMarker* findMeant(const std::vector<std::u16string>& names, const Index& index,
                                      const SimilarNames& similar,
                                      const std::vector<const FoundMarker*>& markers) {
    for (const std::u16string& name : names) {
      if (const auto same = index.find(name); same != index.end()) return same->second;
    }
    for (const std::u16string& name : names) {
      // The id may follow an element and "#".
      const bool isShort = name.size() < kMinSimilar || name[name.size() - 2] == u'#';
      const auto found = isShort ? std::nullopt : similar.find(name);
      if (found) return markers[*found];
    }
    return nullptr;
  }

  /// Returns the only task without an entry whose id continues that of a marker that is cut off.
  static const FoundMarker* findLonger(const Suspect& suspect, const Index& missing) {
    const bool isPossible = suspect.element == u"task" && missing.size() == 1;
    if (!isPossible) return nullptr;
    const auto& [id, marker] = *missing.begin();
    return suspect.ids.empty() || id.starts_with(suspect.ids.front()) ? marker : nullptr;
  }

  void explainUnused() {
    Index byKey;
    SimilarNames similar;
    for (std::size_t i = 0; i < unused.size(); ++i) {
      byKey.emplace(keyOf(*unused[i]), unused[i]);
      similar.add(keyOf(*unused[i]), i);
    }
    std::unordered_set<const FoundMarker*> explained;
    for (Suspect& suspect : findings.suspects.code) {
      std::vector<std::u16string> keys;
      for (const std::u16string& id : suspect.ids) keys.push_back(keyOf(suspect.element, id));
      const FoundMarker* const entry = findMeant(keys, byKey, similar, unused);
      if (entry == nullptr || !explained.insert(entry).second) continue;
      suspect.diagnostic.notes.push_back({entry->span(), "so this entry belongs to no marker"});
    }
    std::erase_if(unused, [&](const FoundMarker* entry) { return explained.contains(entry); });
  }

  /// The markers in the code that have no entry, by key.
  SimilarNames indexMissing() {
    SimilarNames missing;
    for (const FoundMarker& marker : scan.code) {
      if (!marker.isMarker() || marker.id.size() < kMinSimilar) continue;
      const std::u16string key = keyOf(marker);
      if (entries.contains(key) || codeMarkers.at(key) != &marker) continue;
      missing.add(key, missingMarkers.size());
      missingMarkers.push_back(&marker);
    }
    return missing;
  }

  void reportUnused(const FoundMarker& entry, const SimilarNames& missing) {
    const auto index = entry.id.size() < kMinSimilar ? std::nullopt : missing.find(keyOf(entry));
    if (!index) {
      report(DiagnosticKind::kUnusedEntry, kEntryUnused, entry.span(), {entryName(entry)});
      return;
    }
    const FoundMarker& marker = *missingMarkers[*index];
    report(DiagnosticKind::kUnusedEntry, kEntrySimilar, entry.span(),
           {entryName(entry), entryName(marker)})
        .notes.push_back({marker.span(), "this marker has no entry"});
    if (marker.isTask()) findings.brokenTasks.insert(marker.id);
  }

  /// An entry with text directly after its ">".
  struct EarlyEnd {
    const FoundMarker* entry = nullptr;
    /// The key that it has if the text is part of its id.
    std::u16string key;
    std::size_t diagnostic = 0;
  };

  const FileScan& scan;
  const TaskWalk& walk;
  Findings& findings;
  // The first marker of each key.
  Index codeMarkers;
  Index entries;
  std::vector<const FoundMarker*> unused;
  std::vector<const FoundMarker*> tasksWithoutEntry;
  std::vector<const FoundMarker*> missingMarkers;
  std::vector<EarlyEnd> earlyEnds;
  std::uint64_t textLines = 0;
  std::uint64_t textEnd = 0;
  std::size_t textDiagnostic = 0;
};

}  // namespace

void checkAppendix(const FileScan& scan, const TaskWalk& walk, Findings& findings) {
  AppendixRule rule(scan, walk, findings);
  rule.checkLines();
  rule.checkPairs();
}

}  // namespace tessera::check::rules

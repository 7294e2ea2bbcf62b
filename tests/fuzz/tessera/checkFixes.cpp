#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Choices.hpp"
#include "fuzz/require.hpp"
#include "fuzz/targets.hpp"
#include "fuzz/tessera/Workbench.hpp"
#include "fuzz/tessera/applyDifference.hpp"
#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/fixes/FixedText.hpp"
#include "tessera/check/fixes/fixText.hpp"

namespace quenlith::fuzz {

using tessera::check::catalogue::CheckedFile;
using tessera::check::catalogue::Diagnostic;
using tessera::check::catalogue::DiagnosticKind;
using tessera::check::catalogue::Position;
using tessera::check::catalogue::Severity;
using tessera::check::catalogue::Span;
using tessera::check::fixes::FixedText;

namespace {

// Only so many fixes of a file are also made alone.
constexpr std::size_t kMostFixesAlone = 3;

bool isIn(const CheckedFile& file, const Position& position) {
  const bool isAfterLastLine = position.line == file.lines.count() + 1 && position.unit == 0;
  return isAfterLastLine || (position.line >= 1 && position.line <= file.lines.count() &&
                             position.unit <= file.lines.line(position.line).size());
}

bool isIn(const CheckedFile& file, const Span& span) {
  return span.begin <= span.end && isIn(file, span.begin) && isIn(file, span.end);
}

void checkPlaces(const CheckedFile& file) {
  Position before;
  for (const Diagnostic& diagnostic : file.diagnostics) {
    require(isIn(file, diagnostic.span), "a diagnostic is about a place of the file");
    require(before <= diagnostic.span.begin, "diagnostics are in the order of their places");
    before = diagnostic.span.begin;
    for (const auto& note : diagnostic.notes) {
      require(isIn(file, note.span), "a note is about a place of the file");
    }
    if (!diagnostic.fix) continue;
    Position end;
    for (const auto& edit : diagnostic.fix->edits) {
      require(isIn(file, edit.span) && end <= edit.span.begin, "edits are in order in the file");
      end = edit.span.end;
    }
  }
}

std::map<DiagnosticKind, std::size_t> countFailures(const CheckedFile& file) {
  std::map<DiagnosticKind, std::size_t> counts;
  for (const Diagnostic& diagnostic : file.diagnostics) {
    if (severityOf(diagnostic) == Severity::kFailure) ++counts[diagnostic.kind];
  }
  return counts;
}

std::string show(const std::string& before, const std::string& after) {
  return "--- before\n" + before + "\n--- after\n" + after;
}

void checkNoNewFailure(const CheckedFile& before, const CheckedFile& after,
                       const std::string& beforeBytes, const std::string& afterBytes) {
  auto allowed = countFailures(before);
  for (const auto& [kind, count] : countFailures(after)) {
    require(count <= allowed[kind], "a fix never makes a new failure", [&, kind = kind] {
      return std::string(tessera::check::catalogue::entryOf(kind).id) + '\n' +
             show(beforeBytes, afterBytes);
    });
  }
}

void checkFixAlone(const SourceFile& file, const CheckedFile& before, std::size_t index) {
  FixedText text(file.bytes);
  const tessera::check::catalogue::Fix* const fix = &*before.diagnostics[index].fix;
  require(text.apply(std::span(&fix, 1)) == 1, "a fix is made alone");
  const SourceFile fixed{file.name, text.bytes()};
  checkNoNewFailure(before, Workbench::get().check(fixed), file.bytes, fixed.bytes);
}

void checkEachFix(const SourceFile& file, const CheckedFile& before) {
  std::size_t checked = 0;
  for (std::size_t i = 0; i < before.diagnostics.size() && checked < kMostFixesAlone; ++i) {
    const auto& fix = before.diagnostics[i].fix;
    if (!fix || fix->edits.empty()) continue;
    checkFixAlone(file, before, i);
    ++checked;
  }
}

void checkAllFixes(const SourceFile& file, const CheckedFile& before) {
  const auto check = [&](const std::string& bytes) {
    return Workbench::get().check({file.name, bytes});
  };
  FixedText text(file.bytes);
  const auto result = tessera::check::fixes::fixText(text, check);
  const std::string fixed = text.bytes();
  checkNoNewFailure(before, result.checked, file.bytes, fixed);
  FixedText again(fixed);
  require(tessera::check::fixes::fixText(again, check).count == 0, "fixing twice changes no more",
          [&] { return show(fixed, again.bytes()); });
  require(applyDifference(file.bytes, text.diff(file.name)) == fixed,
          "the difference makes the fixed text");
  require((result.count == 0) == (fixed == file.bytes), "a fix changes the text");
}

}  // namespace

void checkFixes(std::string_view input) {
  Choices choices(input);
  const SourceFile file = readFile(choices);
  const CheckedFile checked = Workbench::get().check(file);
  checkPlaces(checked);
  checkAllFixes(file, checked);
  checkEachFix(file, checked);
}

}  // namespace quenlith::fuzz

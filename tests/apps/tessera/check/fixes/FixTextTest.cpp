#include "tessera/check/fixes/fixText.hpp"

#include <gtest/gtest.h>

#include "tessera/check/catalogue/Catalogue.hpp"

namespace tessera::check::fixes {
namespace {

using catalogue::CheckedFile;
using catalogue::Diagnostic;
using catalogue::DiagnosticKind;

// A text of letters: a rule replaces the first one by the next letter, up to "d".
Diagnostic fixOf(const std::string& text) {
  Diagnostic diagnostic =
      catalogue::makeDiagnostic(DiagnosticKind::kUnknownElement, 0, catalogue::spanOf(1, 0, 1), {});
  const std::string next(1, static_cast<char>(text[0] + 1));
  if (text[0] != 'd') diagnostic.fix = {"replace", {{diagnostic.span, next}}};
  return diagnostic;
}

Diagnostic failure(DiagnosticKind kind) {
  return catalogue::makeDiagnostic(kind, 0, catalogue::spanOf(1, 0, 1), {"", ""});
}

TEST(FixText, FixesAreMadeUntilThereAreNone) {
  FixedText text("ax\n");
  const FixResult result = fixText(text, [](const std::string& bytes) {
    CheckedFile file;
    file.diagnostics.push_back(fixOf(bytes));
    return file;
  });
  EXPECT_EQ(text.bytes(), "dx\n");
  EXPECT_EQ(result.count, 3U);
}

TEST(FixText, FixAfterWhichThereIsAFailureMoreIsNotMade) {
  FixedText text("ax\n");
  const FixResult result = fixText(text, [](const std::string& bytes) {
    CheckedFile file;
    file.diagnostics.push_back(fixOf(bytes));
    // Of two failures another kind takes the place of one.
    file.diagnostics.push_back(failure(DiagnosticKind::kInvalidPositionData));
    file.diagnostics.push_back(failure(bytes[0] == 'c' ? DiagnosticKind::kMissingTaskMarkerPair
                                                       : DiagnosticKind::kInvalidPositionData));
    return file;
  });
  EXPECT_EQ(text.bytes(), "bx\n");
  EXPECT_EQ(result.count, 1U);
  EXPECT_EQ(result.checked.diagnostics[0].fix->edits[0].text, "c");
}

}  // namespace
}  // namespace tessera::check::fixes

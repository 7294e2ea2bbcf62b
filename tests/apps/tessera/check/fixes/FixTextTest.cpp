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

// A rule replaces each "a" by "b", which is a failure at an odd position, and each "x" by "y",
// which is a failure in "y-y".
class Letters {
 public:
  CheckedFile check(const std::string& bytes) {
    ++count;
    CheckedFile file;
    for (std::size_t i = 0; i + 1 < bytes.size(); ++i) {
      if (bytes[i] == 'a') addFix(file, i, "b");
      if (bytes[i] == 'x') addFix(file, i, "y");
      const bool isFailure = (bytes[i] == 'b' && i % 2 == 1) || bytes.compare(i, 3, "y-y") == 0;
      if (isFailure) file.diagnostics.push_back(failure(DiagnosticKind::kOverlappingTaskMarker));
    }
    return file;
  }

  FixResult fix(FixedText& text) {
    return fixText(text, [this](const std::string& bytes) { return check(bytes); });
  }

  std::size_t count = 0;

 private:
  static void addFix(CheckedFile& file, std::size_t at, const std::string& letter) {
    Diagnostic diagnostic = catalogue::makeDiagnostic(DiagnosticKind::kUnknownElement, 0,
                                                      catalogue::spanOf(1, at, at + 1), {});
    diagnostic.fix = {"replace", {{diagnostic.span, letter}}};
    file.diagnostics.push_back(diagnostic);
  }
};

std::string fixedLetters(const std::string& letters) {
  FixedText text(letters);
  Letters().fix(text);
  return text.bytes();
}

TEST(FixText, AHarmfulFixDoesNotPreventTheOthers) {
  EXPECT_EQ(fixedLetters("a-a-a-\n"), "b-b-b-\n");
  EXPECT_EQ(fixedLetters("-a-\n"), "-a-\n");
  EXPECT_EQ(fixedLetters("a-a--a-a--a-\n"), "b-b--a-a--b-\n");
  EXPECT_EQ(fixedLetters("-a-a---a-a-a-\n"), "-a-a---a-a-a-\n");
}

TEST(FixText, OfFixesThatAreHarmfulTogetherTheFirstIsMade) {
  EXPECT_EQ(fixedLetters("a-x-x--a-\n"), "b-y-x--a-\n");
  EXPECT_EQ(fixedLetters("a-x-x---a-x-x-\n"), "b-y-x---b-y-x-\n");
  EXPECT_EQ(fixedLetters("x-x-x-\n"), "y-x-y-\n");
}

TEST(FixText, TheFixesThatAreMadeAreCounted) {
  FixedText text("a-a--a-a--a-\n");
  const FixResult result = Letters().fix(text);
  EXPECT_EQ(result.count, 3U);
  EXPECT_EQ(result.checked.diagnostics.size(), 2U);
  FixedText again(text.bytes());
  EXPECT_EQ(Letters().fix(again).count, 0U);
}

std::string repeated(const std::string& letters, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += letters;
  return text;
}

TEST(FixText, OneHarmfulFixOfAThousandIsFoundInFewChecks) {
  FixedText text(repeated("a-", 700) + "-a-" + repeated("-a", 300) + "-\n");
  Letters letters;
  EXPECT_EQ(letters.fix(text).count, 1000U);
  EXPECT_LT(letters.count, 40U);
}

TEST(FixText, TheChecksAreLimitedWhereManyFixesAreHarmful) {
  for (const std::size_t count : {100U, 300U, 1000U}) {
    FixedText text(repeated("-a", count) + "-\n");
    Letters letters;
    EXPECT_EQ(letters.fix(text).count, 0U);
    EXPECT_LT(letters.count, 100U);
  }
}

}  // namespace
}  // namespace tessera::check::fixes

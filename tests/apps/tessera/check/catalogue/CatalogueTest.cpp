#include "tessera/check/catalogue/Catalogue.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

namespace {

using namespace tessera::check::catalogue;

std::string_view messageOfEntry(DiagnosticKind kind, std::size_t form) {
  return entryOf(kind).messages[form];
}

TEST(Catalogue, EveryEntryHasItsTexts) {
  std::set<std::string_view> ids;
  for (const CatalogueEntry& entry : catalogue()) {
    EXPECT_TRUE(ids.insert(entry.id).second) << entry.id;
    EXPECT_EQ(entry.id.find_first_not_of("abcdefghijklmnopqrstuvwxyz_"), entry.id.npos) << entry.id;
    EXPECT_EQ(&entryOf(entry.kind), &entry);
    EXPECT_EQ(findEntry(entry.id), &entry);
    EXPECT_FALSE(entry.title.empty()) << entry.id;
    EXPECT_TRUE(entry.explanation.ends_with('.')) << entry.id;
    EXPECT_GT(entry.messages.size(), 0u) << entry.id;
    for (const std::string_view message : entry.messages) EXPECT_FALSE(message.empty()) << entry.id;
  }
  EXPECT_EQ(findEntry("nothing"), nullptr);
}

TEST(Catalogue, MessagesContainTheirArguments) {
  EXPECT_EQ(messageOf(DiagnosticKind::kInvalidPositionData, forms::kRangePastEnd, {"[0,%2]", "3"}),
            "the range [0,%2] ends past the end of the line, which has 3");
  EXPECT_EQ(messageOf(DiagnosticKind::kMissingTaskMarkerPair, forms::kPairUnexplained, {}),
            "the task marker  has no partner");
}

/// Returns the messages of all golden files of check.
std::string readGoldenFiles() {
  std::string text;
  for (const char* folder : {"check", "check_without_pieces"}) {
    const auto path = std::filesystem::path(TESSERA_GOLDEN_FOLDER) / folder;
    for (const auto& file : std::filesystem::directory_iterator(path)) {
      if (file.path().extension() != ".expected") continue;
      std::ifstream stream(file.path());
      text.append(std::istreambuf_iterator<char>(stream), {});
    }
  }
  return text;
}

/// Returns the longest part of a message without a placeholder.
std::string_view longestPart(std::string_view message) {
  std::string_view longest;
  while (!message.empty()) {
    const std::string_view part = message.substr(0, message.find('%'));
    if (part.size() > longest.size()) longest = part;
    message.remove_prefix(std::min(message.size(), part.size() + 2));
  }
  return longest;
}

TEST(Catalogue, EveryMessageHasAGoldenCase) {
  const std::string golden = readGoldenFiles();
  // These need a bundle that records such a failure, a second file, or 65,536 lines; other tests
  // have them.
  const std::set<std::string_view> others{
      messageOfEntry(DiagnosticKind::kParserFailure, 0),
      messageOfEntry(DiagnosticKind::kTaskTooLong, 0),
      messageOfEntry(DiagnosticKind::kMissingTaskMarkerPair, forms::kPairUnexplained),
      messageOfEntry(DiagnosticKind::kMissingTaskMarkerPair, forms::kPairInOtherFile),
      messageOfEntry(DiagnosticKind::kOverlappingTaskMarker, forms::kOverlapUnexplained)};
  for (const CatalogueEntry& entry : catalogue()) {
    for (const std::string_view message : entry.messages) {
      if (others.contains(message)) continue;
      EXPECT_NE(golden.find(longestPart(message)), golden.npos) << entry.id << ": " << message;
    }
    const bool isElsewhere =
        entry.kind == DiagnosticKind::kParserFailure || entry.kind == DiagnosticKind::kTaskTooLong;
    EXPECT_TRUE(isElsewhere || golden.find("[" + std::string(entry.id) + "]") != golden.npos)
        << entry.id;
  }
}

}  // namespace

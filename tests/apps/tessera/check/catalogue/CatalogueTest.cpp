#include "tessera/check/catalogue/Catalogue.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using namespace tessera::check::catalogue;

TEST(Catalogue, EveryEntryHasItsTexts) {
  std::set<std::string_view> ids;
  for (const CatalogueEntry& entry : catalogue()) {
    EXPECT_TRUE(ids.insert(entry.id).second) << entry.id;
    EXPECT_EQ(entry.id.find_first_not_of("abcdefghijklmnopqrstuvwxyz_"), entry.id.npos) << entry.id;
    EXPECT_EQ(&entryOf(entry.kind), &entry);
    EXPECT_EQ(findEntry(entry.id), &entry);
    EXPECT_FALSE(entry.title.empty()) << entry.id;
    EXPECT_TRUE(entry.explanation.ends_with('.')) << entry.id;
    EXPECT_FALSE(entry.messages.empty()) << entry.id;
    for (const std::string_view message : entry.messages) EXPECT_FALSE(message.empty()) << entry.id;
  }
  EXPECT_EQ(findEntry("nothing"), nullptr);
}

TEST(Catalogue, MessagesContainTheirArguments) {
  EXPECT_EQ(messageOf(DiagnosticKind::kInvalidPositionData, 0, {"output%2", "\"a\""})
                .find("the range of the output%2 marker \"a\""),
            0u);
}

}  // namespace

#include "tessera/session/Recording.hpp"

#include <gtest/gtest.h>

#include "apps/tessera/support/TemporaryFolder.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/PartialFile.hpp"

namespace {

using quenlith::build::markup::Snippet;
using tessera::files::Leftover;
using tessera::files::PartialFile;
using tessera::session::Recording;

TEST(Recording, WritesEachCallInAdvance) {
  const TemporaryFolder folder;
  PartialFile file(folder.path("r"), Leftover::kReplaced);
  Recording recording(file.output());
  recording.begin({u"%<@task#a>"}, u"code");
  recording.reset("P");
  recording.canParse("P", Snippet{u"co\"de", {1, 3}, u"code"});
  // Everything is in the file before the call is made, because the call may end the process.
  EXPECT_EQ(folder.read("r.partial"),
            "{\"op\":\"document\"}\n"
            "{\"op\":\"appendix\",\"entries\":[\"%<@task#a>\"]}\n"
            "{\"op\":\"reset\",\"parser\":\"P\"}\n"
            "{\"op\":\"canParse\",\"parser\":\"P\",\"snippet\":{\"text\":\"co\\\"de\",\"type\":{"
            "\"group\":1,"
            "\"kind\":3},\"auxiliaryText\":\"code\"}}\n");
}

// Two ids may differ in a surrogate only.
TEST(Recording, KeepsAnUnpairedSurrogateOfAnEntry) {
  const TemporaryFolder folder;
  PartialFile file(folder.path("r"), Leftover::kReplaced);
  Recording recording(file.output());
  recording.begin({u"%<@task#a\xD800>", u"\xDFFF\"\xD83D\xDE00\xD83D"}, u"");
  EXPECT_EQ(folder.read("r.partial"),
            "{\"op\":\"document\"}\n"
            "{\"op\":\"appendix\",\"entries\":[\"%<@task#a\\ud800>\","
            "\"\\udfff\\\"\U0001F600\\ud83d\"]}\n");
}

TEST(Recording, WritesTheAuxiliaryTextOnlyWhenItChanges) {
  const TemporaryFolder folder;
  PartialFile file(folder.path("r"), Leftover::kReplaced);
  Recording recording(file.output());
  const auto countOf = [&](std::string_view wanted) {
    const std::string text = folder.read("r.partial");
    std::size_t count = 0;
    for (auto at = text.find(wanted); at != text.npos; at = text.find(wanted, at + 1)) ++count;
    return count;
  };
  // It is empty at first.
  recording.begin({}, u"");
  recording.parse("P", Snippet{u"", {}, u""});
  EXPECT_EQ(countOf("auxiliaryText"), 0u);
  recording.end();
  for (int round = 0; round < 2; ++round) {
    recording.begin({}, u"same");
    recording.parse("P", Snippet{u"same", {}, u"same"});
    recording.parse("P", Snippet{u"same", {}, u"same"});
    recording.end();
  }
  EXPECT_EQ(countOf("\"auxiliaryText\":\"same\""), 1u);
  recording.begin({}, u"other");
  recording.parse("P", Snippet{u"other", {}, u"other"});
  EXPECT_EQ(countOf("\"auxiliaryText\":\"other\""), 1u);
  EXPECT_EQ(countOf("{\"op\":\"nodes\"}\n"), 3u);
}

TEST(Recording, WritesAnAuxiliaryTextThatChangedBeforeAFileWithoutCalls) {
  const TemporaryFolder folder;
  PartialFile file(folder.path("r"), Leftover::kReplaced);
  Recording recording(file.output());
  for (const std::u16string_view code : {u"one", u"", u""}) {
    recording.begin({}, code);
    if (!code.empty()) recording.parse("P", Snippet{u"one", {}, u"one"});
    recording.end();
  }
  recording.begin({}, u"");
  recording.parse("P", Snippet{u"", {}, u""});
  EXPECT_NE(folder.read("r.partial").find("\"auxiliaryText\":\"\""), std::string::npos);
}

TEST(Recording, AFileThatCannotBeWrittenIsAnError) {
  PartialFile full("/dev/full", Leftover::kReplaced);
  Recording recording(full.output());
  EXPECT_THROW(recording.reset("P"), tessera::diagnostics::OutputError);
}

}  // namespace

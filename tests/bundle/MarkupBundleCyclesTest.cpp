#include <gtest/gtest.h>
#include <malloc.h>

#include <memory>
#include <thread>
#include <utility>

#include "MarkupBundleFixture.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "support/testCycles.hpp"

namespace {

using quenlith::build::markup::Snippet;
using quenlith::build::markup::SnippetParser;

const int kCycles = quenlith::test::testCycles(CYCLES);

// The numbers of children and of contributor data of a line with an output marker.
using LineParts = std::pair<std::size_t, std::size_t>;

LineParts parseOutputLine(SnippetParser& with) {
  const fl::i18n::ustring text = u"print(total)  # <@output#a [0,12] {\"format\":\"short\"}>";
  const auto document = std::make_shared<document::kdzero::TesseraDocument>();
  with.parse(document, Snippet{.text = text, .type = {}, .auxiliaryText = text});
  const document::kdzero::Node line = document->getChildAt(0);
  return {line->getChildren().size(), line->getContributorData().size()};
}

// Returns the number of allocated bytes.
std::size_t liveBytes() {
  return mallinfo2().uordblks;
}

}  // namespace

TEST_F(MarkupBundle, StartsAndStopsRepeatedly) {
  const auto registration = registerAppendix();
  std::size_t early = 0;
  for (int cycle = 0; cycle < kCycles; ++cycle) {
    if (cycle == kCycles / 10) early = liveBytes();
    bundle.Stop();
    ASSERT_EQ(parserCount(), 0U);
    bundle.Start();
    ASSERT_EQ(parseLine(*parser(kTask), u"x = 1"), 1U);
  }
  EXPECT_LT(liveBytes(), early + 64 * 1024);
}

TEST_F(MarkupBundle, AppendixIsRegisteredAndUnregisteredBetweenLines) {
  const auto defaultParser = parser(kDefault);
  std::size_t early = 0;
  for (int cycle = 0; cycle < kCycles; ++cycle) {
    if (cycle == kCycles / 10) early = liveBytes();
    auto registration = registerAppendix();
    ASSERT_EQ(parseLine(*parser(kTask), u"x = 1"), 1U);
    registration.Unregister();
    ASSERT_EQ(parserCount(), 1U);
    ASSERT_EQ(parseLine(*defaultParser, u"y"), 1U);
  }
  EXPECT_LT(liveBytes(), early + 64 * 1024);
}

TEST_F(MarkupBundle, AppendixMayBeRegisteredInAnotherThread) {
  const auto defaultParser = parser(kDefault);
  std::thread host([this] {
    for (int cycle = 0; cycle < kCycles / 10; ++cycle) registerAppendix().Unregister();
  });
  for (int cycle = 0; cycle < kCycles / 10; ++cycle) {
    ASSERT_EQ(parseLine(*defaultParser, u"y"), 1U);
    ASSERT_GE(parserCount(), 1U);
  }
  host.join();
  EXPECT_EQ(parserCount(), 1U);
}

TEST_F(MarkupBundle, ExtensionsStartAndStopBetweenLines) {
  std::size_t early = 0;
  for (int cycle = 0; cycle < kCycles; ++cycle) {
    if (cycle == kCycles / 10) early = liveBytes();
    // The provider looks contributors up until it finds one, but code element parsers only once.
    auto code = parser(kDefault);
    ASSERT_EQ(parseOutputLine(*code), LineParts(1, 0));
    auto keepsText = install(OUTPUT_TEXT);
    auto contributes = install(OUTPUT_DATA);
    keepsText.Start();
    contributes.Start();
    ASSERT_EQ(parseOutputLine(*code), LineParts(1, 1));
    bundle.Stop();
    bundle.Start();
    // A new provider finds both, and keeps both when their bundles stop.
    code = parser(kDefault);
    ASSERT_EQ(parseOutputLine(*code), LineParts(2, 1));
    for (auto* extension : {&keepsText, &contributes}) {
      cycle % 10 == 0 ? extension->Uninstall() : extension->Stop();
    }
    ASSERT_EQ(parseOutputLine(*code), LineParts(2, 1));
    bundle.Stop();
    bundle.Start();
  }
  EXPECT_LT(liveBytes(), early + 64 * 1024);
}

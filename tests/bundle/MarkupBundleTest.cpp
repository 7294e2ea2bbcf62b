#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <utility>

#include "MarkupBundleFixture.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "foundation/cppmicroservices/getFramework.hpp"
#include "quenlith/build/markup/code/CodeElementParser.hpp"
#include "quenlith/build/markup/contributordata/LineContributorDataParser.hpp"
#include "quenlith/build/markup/services/ParserServicesProvider.hpp"

using cppmicroservices::Any;
using quenlith::build::markup::code::CodeElementParser;
using quenlith::build::markup::contributordata::LineContributorDataParser;
using quenlith::build::markup::services::ParserServicesProvider;
using testing::SizeIs;

namespace {

class SilentContributor : public LineContributorDataParser {
 public:
  bool isApplicable(const quenlith::syntax::Marker&) override { return false; }
  std::pair<fl::i18n::ustring, contributors::kdzero::LineData> parse(
      const kd::zero::Model&, const quenlith::syntax::Marker&) override {
    return {};
  }
};

// The appendix service as one of the things that are started.
constexpr const char* kAppendix = "appendix";

// Starts a framework with the bundles in this order, and describes what becomes of a line.
std::string parseWithBundles(const std::array<std::string, 5>& parts) {
  using cppmicroservices::Framework;
  using foundation::cppmicroservices::setFramework;
  using quenlith::build::markup::SnippetParser;
  using quenlith::shared::appendix::AppendixBuilder;

  Framework framework = cppmicroservices::FrameworkFactory().NewFramework();
  framework.Start();
  setFramework(std::make_shared<Framework>(framework));
  cppmicroservices::BundleContext context = framework.GetBundleContext();
  for (const std::string& part : parts) {
    if (part == kAppendix) {
      context.RegisterService<AppendixBuilder>(std::make_shared<EmptyAppendix>());
    } else {
      context.InstallBundles(part).at(0).Start();
    }
  }
  std::string out =
      std::to_string(context.GetServiceReferences<SnippetParser>().size()) + " parsers:";
  const auto parser = context.GetServiceReferences<SnippetParser>("(priority=default)").at(0);
  const auto document = std::make_shared<document::kdzero::TesseraDocument>();
  context.GetService(parser)->parse(document, {u"print(total)  # <@output#a [0,12]>", {}, {}});
  const document::kdzero::Node line = document->getChildAt(0);
  for (const document::kdzero::Node& child : line->getChildren()) {
    const auto text = document::kdzero::PlainTextNode::castFrom(child)->getText();
    out += " [" + fl::i18n::ustring_to_utf8(text) + ']';
  }
  out += ", contributor data: " + std::to_string(line->getContributorData().size());
  setFramework(nullptr);
  framework.Stop();
  framework.WaitForStop(std::chrono::milliseconds::zero());
  return out;
}

}  // namespace

TEST_F(MarkupBundle, HasNoTaskParserWithoutAnAppendix) {
  EXPECT_EQ(parserCount(), 1U);
  EXPECT_EQ(parserCount("(test_id=CodeSnippetParserImpl)"), 1U);
}

TEST_F(MarkupBundle, HasATaskParserWhileThereIsAnAppendix) {
  auto registration = registerAppendix();
  EXPECT_EQ(parserCount(), 2U);
  EXPECT_EQ(parserCount(kTask), 1U);
  registration.Unregister();
  EXPECT_EQ(parserCount(), 1U);
}

TEST_F(MarkupBundle, DefaultPriorityFindsOneOfEachFamily) {
  const auto registration = registerAppendix();
  EXPECT_EQ(parserCount(kDefault), 1U);
  EXPECT_THAT(context.GetServiceReferences<CodeElementParser>(kDefault), SizeIs(1));
  EXPECT_THAT(context.GetServiceReferences<CodeElementParser>(), SizeIs(1));
  EXPECT_THAT(context.GetServiceReferences<ParserServicesProvider>(), SizeIs(1));
}

TEST_F(MarkupBundle, ServicesHaveThePropertiesOfTheManifest) {
  const auto registration = registerAppendix();
  const auto code = context.GetServiceReferences<SnippetParser>(kDefault).at(0);
  EXPECT_EQ(code.GetProperty("priority"), Any(std::string("default")));
  EXPECT_EQ(code.GetProperty("test_id"), Any(std::string("CodeSnippetParserImpl")));
  const auto task = context.GetServiceReferences<SnippetParser>(kTask).at(0);
  EXPECT_TRUE(task.GetProperty("priority").Empty());
}

TEST_F(MarkupBundle, BothParsersParse) {
  const auto registration = registerAppendix();
  EXPECT_EQ(parseLine(*parser(kDefault), u"x = 1"), 1U);
  EXPECT_EQ(parseLine(*parser(kTask), u"x = 1"), 1U);
}

TEST_F(MarkupBundle, CallsADefaultParserOfTheSameNameInAnotherLibrary) {
  install(SAME_NAME).Start();
  const auto document = std::make_shared<document::kdzero::TesseraDocument>();
  parser(kDefault)->parse(document, {u"x = 1", {}, {}});
  const auto child = document->getChildAt(0)->getChildren().at(0);
  EXPECT_EQ(document::kdzero::PlainTextNode::castFrom(child)->getText(), u"other(x = 1)");
}

TEST_F(MarkupBundle, TaskParserReleasesAnUnregisteredAppendix) {
  auto registration = registerAppendix();
  EXPECT_EQ(parseLine(*parser(kTask), u"x"), 1U);
  EXPECT_THAT(registration.GetReference().GetUsingBundles(), testing::ElementsAre(bundle));
  registration.Unregister();
  registration = nullptr;
  EXPECT_EQ(appendix.use_count(), 1);
}

TEST_F(MarkupBundle, ProviderKeepsAContributorUntilTheBundleStops) {
  const auto contributor = std::make_shared<SilentContributor>();
  auto registration = context.RegisterService<LineContributorDataParser>(contributor);
  parseLine(*parser(kDefault), u"x");
  registration.Unregister();
  registration = nullptr;
  EXPECT_EQ(contributor.use_count(), 2);
  bundle.Stop();
  EXPECT_EQ(contributor.use_count(), 1);
}

TEST_F(MarkupBundle, ParserInUseOutlivesTheBundle) {
  const auto held = parser(kDefault);
  EXPECT_EQ(parseLine(*held, u"x"), 1U);
  bundle.Stop();
  EXPECT_EQ(parserCount(), 0U);
  EXPECT_EQ(parseLine(*held, u"y"), 1U);
}

TEST(MarkupBundleOrder, ALineIsParsedAlikeInWhateverOrderBundlesStart) {
  std::array<std::string, 5> parts = {SCR_BUNDLE, BUNDLE, OUTPUT_TEXT, OUTPUT_DATA, kAppendix};
  std::ranges::sort(parts);
  do {
    EXPECT_EQ(parseWithBundles(parts), "2 parsers: [print(total)] [  ], contributor data: 1");
  } while (std::next_permutation(parts.begin(), parts.end()));
}

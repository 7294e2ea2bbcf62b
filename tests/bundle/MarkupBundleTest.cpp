#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkEvent.h>
#include <cppmicroservices/FrameworkFactory.h>

#include "document/kdzero/TesseraDocument.hpp"
#include "foundation/cppmicroservices/getFramework.hpp"
#include "quenlith/build/markup/SnippetParser.hpp"
#include "quenlith/build/markup/code/CodeElementParser.hpp"
#include "quenlith/build/markup/services/ParserServicesProvider.hpp"
#include "quenlith/shared/appendix/AppendixBuilder.hpp"

using cppmicroservices::Any;
using cppmicroservices::Bundle;
using cppmicroservices::BundleContext;
using cppmicroservices::ServiceReference;
using cppmicroservices::ServiceRegistration;
using quenlith::build::markup::Snippet;
using quenlith::build::markup::SnippetParser;
using quenlith::build::markup::code::CodeElementParser;
using quenlith::build::markup::services::ParserServicesProvider;
using quenlith::shared::appendix::AppendixBuilder;
using quenlith::shared::appendix::AppendixEntry;
using testing::SizeIs;

namespace {

class EmptyAppendix : public AppendixBuilder {
 public:
  void addEntry(const quenlith::syntax::Marker&) override {}
  fl::i18n::ustring build() const override { return u""; }
  AppendixEntry findEntry(const quenlith::syntax::Marker&) const override { return {}; }
};

class MarkupBundle : public testing::Test {
 protected:
  void SetUp() override {
    framework.Start();
    foundation::cppmicroservices::setFramework(
        std::make_shared<cppmicroservices::Framework>(framework));
    context = framework.GetBundleContext();
    context.AddFrameworkListener([](const cppmicroservices::FrameworkEvent& event) {
      if (event.GetType() == cppmicroservices::FrameworkEvent::FRAMEWORK_ERROR ||
          event.GetType() == cppmicroservices::FrameworkEvent::FRAMEWORK_WARNING) {
        ADD_FAILURE() << event.GetMessage();
      }
    });
    context.InstallBundles(SCR_BUNDLE).at(0).Start();
    bundle = context.InstallBundles(BUNDLE).at(0);
    bundle.Start();
  }

  void TearDown() override {
    foundation::cppmicroservices::setFramework(nullptr);
    framework.Stop();
    framework.WaitForStop(std::chrono::milliseconds::zero());
  }

  std::size_t parserCount(const std::string& filter = "") {
    return context.GetServiceReferences<SnippetParser>(filter).size();
  }

  std::shared_ptr<SnippetParser> parser(const std::string& filter) {
    return context.GetService(context.GetServiceReferences<SnippetParser>(filter).at(0));
  }

  ServiceRegistration<AppendixBuilder> registerAppendix() {
    return context.RegisterService<AppendixBuilder>(appendix);
  }

  // Parses one line with the parser and says how many nodes that gave.
  static std::size_t parseLine(SnippetParser& with, const fl::i18n::ustring& text) {
    const auto document = std::make_shared<document::kdzero::TesseraDocument>();
    with.parse(document, Snippet{.text = text, .type = {}, .auxiliaryText = text});
    return document->getChildren().size();
  }

  cppmicroservices::Framework framework = cppmicroservices::FrameworkFactory().NewFramework();
  BundleContext context;
  Bundle bundle;
  std::shared_ptr<EmptyAppendix> appendix = std::make_shared<EmptyAppendix>();
};

constexpr const char* kDefault = "(priority=default)";
constexpr const char* kTask = "(test_id=TaskSnippetParserImpl)";

// Bytes that the allocator has handed out.
std::size_t liveBytes() {
  return mallinfo2().uordblks;
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

TEST_F(MarkupBundle, TaskParserEndsWithTheAppendix) {
  auto registration = registerAppendix();
  EXPECT_EQ(parseLine(*parser(kTask), u"x"), 1U);
  EXPECT_THAT(registration.GetReference().GetUsingBundles(), testing::ElementsAre(bundle));
  registration.Unregister();
  registration = nullptr;
  EXPECT_EQ(appendix.use_count(), 1);
}

TEST_F(MarkupBundle, HeldParserOutlivesTheBundle) {
  const auto held = parser(kDefault);
  EXPECT_EQ(parseLine(*held, u"x"), 1U);
  bundle.Stop();
  EXPECT_EQ(parserCount(), 0U);
  EXPECT_EQ(parseLine(*held, u"y"), 1U);
}

TEST_F(MarkupBundle, StartsAndStopsAgainAndAgain) {
  const auto registration = registerAppendix();
  std::size_t early = 0;
  for (int cycle = 0; cycle < CYCLES; ++cycle) {
    if (cycle == CYCLES / 10) early = liveBytes();
    bundle.Stop();
    ASSERT_EQ(parserCount(), 0U);
    bundle.Start();
    ASSERT_EQ(parseLine(*parser(kTask), u"x = 1"), 1U);
  }
  EXPECT_LT(liveBytes(), early + 64 * 1024);
}

TEST_F(MarkupBundle, AppendixComesAndGoesWhileLinesAreParsed) {
  const auto standing = parser(kDefault);
  std::size_t early = 0;
  for (int cycle = 0; cycle < CYCLES; ++cycle) {
    if (cycle == CYCLES / 10) early = liveBytes();
    auto registration = registerAppendix();
    ASSERT_EQ(parseLine(*parser(kTask), u"x = 1"), 1U);
    registration.Unregister();
    ASSERT_EQ(parserCount(), 1U);
    ASSERT_EQ(parseLine(*standing, u"y"), 1U);
  }
  EXPECT_LT(liveBytes(), early + 64 * 1024);
}

TEST_F(MarkupBundle, AppendixMayComeAndGoInAnotherThread) {
  const auto standing = parser(kDefault);
  std::thread host([this] {
    for (int cycle = 0; cycle < CYCLES / 10; ++cycle) registerAppendix().Unregister();
  });
  for (int cycle = 0; cycle < CYCLES / 10; ++cycle) {
    ASSERT_EQ(parseLine(*standing, u"y"), 1U);
    ASSERT_GE(parserCount(), 1U);
  }
  host.join();
  EXPECT_EQ(parserCount(), 1U);
}

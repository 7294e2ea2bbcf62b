#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkEvent.h>
#include <cppmicroservices/FrameworkFactory.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "document/kdzero/TesseraDocument.hpp"
#include "fakes/ParserFakes.hpp"
#include "quenlith/build/markup/code/LineNodeParserService.hpp"
#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"
#include "quenlith/build/markup/services/ParserServicesProviderImpl.hpp"
#include "quenlith/build/markup/services/ProviderFixture.hpp"
#include "support/LogCollector.hpp"

namespace quenlith::test {
namespace {

using build::markup::services::ParserServicesProviderImpl;
using testing::ElementsAre;
using testing::IsEmpty;
using ElementParsers = std::vector<std::shared_ptr<CodeElementParser>>;

class ParserServicesProvider : public ProviderFixture {};

// Code element parsers.

TEST_F(ParserServicesProvider, PutsTheDefaultParserLast) {
  const auto d = addElementParser(prioritised("default"));
  const auto a = addElementParser();
  const auto b = addElementParser(prioritised("high"));
  EXPECT_EQ(provider.getCodeElementParsers(), (ElementParsers{a, b, d}));
}

TEST_F(ParserServicesProvider, KeepsTheOrderOfTheFramework) {
  const auto low = addElementParser(ranked(-1));
  const auto first = addElementParser();
  const auto high = addElementParser(ranked(5));
  const auto second = addElementParser();
  const auto d = addElementParser(prioritised("default"));
  EXPECT_EQ(provider.getCodeElementParsers(), (ElementParsers{high, first, second, low, d}));
}

TEST_F(ParserServicesProvider, TakesTheFirstOfSeveralDefaultParsers) {
  const auto first = addElementParser(prioritised("default"));
  addElementParser(prioritised("default"));
  EXPECT_THAT(provider.getCodeElementParsers(), ElementsAre(first));
}

TEST_F(ParserServicesProvider, WithNothingButADefaultParserGivesItAlone) {
  const LogRecords records;
  const auto d = addElementParser(prioritised("default"));
  EXPECT_THAT(provider.getCodeElementParsers(), ElementsAre(d));
  EXPECT_THAT(records.get(), ElementsAre("Found 0 non default code element parsers"));
}

TEST_F(ParserServicesProvider, WithoutADefaultParserEndsTheListWithNull) {
  const auto a = addElementParser();
  EXPECT_THAT(provider.getCodeElementParsers(), ElementsAre(a, nullptr));
}

TEST_F(ParserServicesProvider, WithoutAnyElementParserGivesNullAndKeepsIt) {
  EXPECT_THAT(provider.getCodeElementParsers(), ElementsAre(nullptr));
  addElementParser(prioritised("default"));
  EXPECT_THAT(provider.getCodeElementParsers(), ElementsAre(nullptr));
}

TEST_F(ParserServicesProvider, LooksForElementParsersOnceAndLogsTheirNumber) {
  const LogRecords records;
  const auto a = addElementParser();
  const auto b = addElementParser();
  const auto d = addElementParser(prioritised("default"));
  EXPECT_THAT(provider.getCodeElementParsers(), ElementsAre(a, b, d));
  addElementParser();
  EXPECT_THAT(provider.getCodeElementParsers(), ElementsAre(a, b, d));
  EXPECT_THAT(records.get(), ElementsAre("Found 2 non default code element parsers"));
}

TEST_F(ParserServicesProvider, LogsALargerNumberWithoutGrouping) {
  const LogRecords records;
  for (int i = 0; i < 12; ++i) addElementParser();
  EXPECT_EQ(provider.getCodeElementParsers().size(), 13u);
  EXPECT_THAT(records.get(), ElementsAre("Found 12 non default code element parsers"));
}

TEST_F(ParserServicesProvider, LogsBetweenTheLookups) {
  std::vector<std::string> before;
  const LogRecords records;
  addFactory<CodeElementParser>(
      [&] {
        before = records.get();
        return cppmicroservices::MakeInterfaceMap<CodeElementParser>(makeElementParser());
      },
      prioritised("default"));
  EXPECT_EQ(provider.getCodeElementParsers().size(), 1u);
  EXPECT_THAT(before, ElementsAre("Found 0 non default code element parsers"));
}

TEST_F(ParserServicesProvider, SkipsAnElementParserThatCannotBeCreated) {
  addFactory<CodeElementParser>([] { return nullptr; });
  const auto a = addElementParser();
  const LogRecords records;
  EXPECT_THAT(provider.getCodeElementParsers(), ElementsAre(a, nullptr));
  EXPECT_THAT(records.get(), ElementsAre("Found 1 non default code element parsers"));
}

TEST_F(ParserServicesProvider, TreatsADefaultParserThatCannotBeCreatedAsNull) {
  addFactory<CodeElementParser>([] { return nullptr; }, prioritised("default"));
  addElementParser(prioritised("default"));
  EXPECT_THAT(provider.getCodeElementParsers(), ElementsAre(nullptr));
}

TEST_F(ParserServicesProvider, GivesEachCallerItsOwnList) {
  const auto d = addElementParser(prioritised("default"));
  const auto c = addContributor();
  provider.getCodeElementParsers().clear();
  provider.getLineContributorDataParsers().clear();
  // A provider that gave its list away would look again and find these, too.
  addElementParser();
  addContributor();
  EXPECT_THAT(provider.getCodeElementParsers(), ElementsAre(d));
  EXPECT_THAT(provider.getLineContributorDataParsers(), ElementsAre(c));
}

// Contributor data parsers.

TEST_F(ParserServicesProvider, GivesAllContributorsWhateverTheirPriority) {
  const auto first = addContributor(prioritised("default"));
  const auto second = addContributor();
  const auto high = addContributor(ranked(1));
  const LogRecords records;
  EXPECT_THAT(provider.getLineContributorDataParsers(), ElementsAre(high, first, second));
  EXPECT_THAT(records.get(), IsEmpty());
}

TEST_F(ParserServicesProvider, LooksAgainForContributorsUntilThereIsOne) {
  EXPECT_THAT(provider.getLineContributorDataParsers(), IsEmpty());
  const auto first = addContributor();
  EXPECT_THAT(provider.getLineContributorDataParsers(), ElementsAre(first));
  addContributor();
  EXPECT_THAT(provider.getLineContributorDataParsers(), ElementsAre(first));
}

TEST_F(ParserServicesProvider, SkipsAContributorThatCannotBeCreated) {
  addFactory<LineContributorDataParser>([] { return nullptr; });
  EXPECT_THAT(provider.getLineContributorDataParsers(), IsEmpty());
  const auto a = addContributor();
  EXPECT_THAT(provider.getLineContributorDataParsers(), ElementsAre(a));
}

TEST_F(ParserServicesProvider, LooksAgainForAContributorThatCouldNotBeCreated) {
  std::shared_ptr<LineContributorDataParser> made;
  addFactory<LineContributorDataParser>([&made]() -> cppmicroservices::InterfaceMapConstPtr {
    if (made == nullptr) return nullptr;
    return cppmicroservices::MakeInterfaceMap<LineContributorDataParser>(made);
  });
  EXPECT_THAT(provider.getLineContributorDataParsers(), IsEmpty());
  EXPECT_THAT(provider.getLineContributorDataParsers(), IsEmpty());
  // Nothing is registered or unregistered in between.
  made = makeContributor();
  EXPECT_THAT(provider.getLineContributorDataParsers(), ElementsAre(made));
}

TEST_F(ParserServicesProvider, FindsNoContributorThatIsUnregistered) {
  EXPECT_THAT(provider.getLineContributorDataParsers(), IsEmpty());
  context().RegisterService<LineContributorDataParser>(makeContributor()).Unregister();
  EXPECT_THAT(provider.getLineContributorDataParsers(), IsEmpty());
  EXPECT_THAT(provider.getLineContributorDataParsers(), IsEmpty());
  const auto c = addContributor();
  EXPECT_THAT(provider.getLineContributorDataParsers(), ElementsAre(c));
}

TEST_F(ParserServicesProvider, FindsAContributorOfAnotherThread) {
  EXPECT_THAT(provider.getLineContributorDataParsers(), IsEmpty());
  std::thread([this] { addContributor(); }).join();
  EXPECT_EQ(provider.getLineContributorDataParsers().size(), 1u);
}

TEST_F(ParserServicesProvider, FindsAContributorAmongOtherServices) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_THAT(provider.getLineContributorDataParsers(), IsEmpty());
    addElementParser();
  }
  const auto c = addContributor();
  EXPECT_THAT(provider.getLineContributorDataParsers(), ElementsAre(c));
}

// The framework.

TEST_F(ParserServicesProvider, LooksAgainInAFrameworkThatStartedAgain) {
  EXPECT_THAT(provider.getLineContributorDataParsers(), IsEmpty());
  stop();
  EXPECT_THROW(provider.getLineContributorDataParsers(), std::runtime_error);
  EXPECT_THROW(provider.getLineContributorDataParsers(), std::runtime_error);
  framework->Start();
  EXPECT_THAT(provider.getLineContributorDataParsers(), IsEmpty());
  const auto c = addContributor();
  EXPECT_THAT(provider.getLineContributorDataParsers(), ElementsAre(c));
}

TEST_F(ParserServicesProvider, LooksAgainWhenTheFrameworkStartedAgainUnseen) {
  EXPECT_THAT(provider.getLineContributorDataParsers(), IsEmpty());
  stop();
  framework->Start();
  const auto c = addContributor();
  EXPECT_THAT(provider.getLineContributorDataParsers(), ElementsAre(c));
}

TEST_F(ParserServicesProvider, LooksInTheFrameworkThatIsSet) {
  EXPECT_THAT(provider.getLineContributorDataParsers(), IsEmpty());
  const auto other =
      std::make_shared<Framework>(cppmicroservices::FrameworkFactory().NewFramework());
  other->Start();
  const auto c = makeContributor();
  (void)other->GetBundleContext().RegisterService<LineContributorDataParser>(c);
  setFramework(nullptr);
  EXPECT_THAT(provider.getLineContributorDataParsers(), IsEmpty());
  setFramework(framework);
  EXPECT_THAT(provider.getLineContributorDataParsers(), IsEmpty());
  setFramework(other);
  EXPECT_THAT(provider.getLineContributorDataParsers(), ElementsAre(c));
  setFramework(framework);
  other->Stop();
  other->WaitForStop(std::chrono::milliseconds::zero());
}

TEST_F(ParserServicesProvider, MayBeDestroyedBeforeAContributorIsRegistered) {
  ParserServicesProviderImpl().getLineContributorDataParsers();
  addContributor();
  EXPECT_EQ(ParserServicesProviderImpl().getLineContributorDataParsers().size(), 1u);
}

TEST_F(ParserServicesProvider, MayBeDestroyedAfterTheFrameworkStoppedOrWasDestroyed) {
  auto first = std::make_unique<ParserServicesProviderImpl>();
  auto second = std::make_unique<ParserServicesProviderImpl>();
  first->getLineContributorDataParsers();
  second->getLineContributorDataParsers();
  stop();
  first.reset();
  setFramework(nullptr);
  framework = std::make_shared<Framework>(cppmicroservices::FrameworkFactory().NewFramework());
  framework->Start();
  setFramework(framework);
  EXPECT_THAT(second->getLineContributorDataParsers(), IsEmpty());
  addContributor();
  EXPECT_EQ(second->getLineContributorDataParsers().size(), 1u);
}

TEST_F(ParserServicesProvider, DoesNotKeepTheFramework) {
  const std::weak_ptr<Framework> watched = framework;
  provider.getLineContributorDataParsers();
  setFramework(nullptr);
  stop();
  framework = std::make_shared<Framework>(cppmicroservices::FrameworkFactory().NewFramework());
  framework->Start();
  EXPECT_TRUE(watched.expired());
}

TEST_F(ParserServicesProvider, WithoutAFrameworkFindsNothing) {
  addElementParser();
  addContributor();
  setFramework(nullptr);
  const LogRecords records;
  EXPECT_THAT(provider.getCodeElementParsers(), ElementsAre(nullptr));
  EXPECT_THAT(provider.getLineContributorDataParsers(), IsEmpty());
  EXPECT_THAT(records.get(), ElementsAre("Found 0 non default code element parsers"));

  // The code element parsers are cached, the contributors are looked up again.
  setFramework(framework);
  EXPECT_THAT(provider.getCodeElementParsers(), ElementsAre(nullptr));
  EXPECT_EQ(provider.getLineContributorDataParsers().size(), 1u);
}

TEST_F(ParserServicesProvider, ThrowsWhenTheFrameworkHasStoppedAndKeepsNothing) {
  stop();
  EXPECT_THROW(provider.getCodeElementParsers(), std::runtime_error);
  EXPECT_THROW(provider.getLineContributorDataParsers(), std::runtime_error);
  framework->Start();
  const auto d = addElementParser(prioritised("default"));
  const auto c = addContributor();
  EXPECT_THAT(provider.getCodeElementParsers(), ElementsAre(d));
  EXPECT_THAT(provider.getLineContributorDataParsers(), ElementsAre(c));
}

TEST_F(ParserServicesProvider, ThrowsWhenTheFrameworkStopsBetweenTwoServices) {
  const auto stopAndMake = [this] {
    stop();
    return cppmicroservices::MakeInterfaceMap<CodeElementParser>(makeElementParser());
  };
  addFactory<CodeElementParser>(stopAndMake);
  addElementParser();
  try {
    provider.getCodeElementParsers();
    FAIL() << "it found them";
  } catch (const std::runtime_error& failure) {
    EXPECT_STREQ(failure.what(), "The bundle context is no longer valid");
  }
  framework->Start();
  const auto d = addElementParser(prioritised("default"));
  EXPECT_THAT(provider.getCodeElementParsers(), ElementsAre(d));
}

TEST_F(ParserServicesProvider, KeepsItsServicesWhileItLives) {
  std::weak_ptr<CodeElementParser> watched;
  {
    ParserServicesProviderImpl shortLived;
    {
      auto parser = makeElementParser();
      watched = parser;
      auto registration = context().RegisterService<CodeElementParser>(parser);
      parser.reset();
      shortLived.getCodeElementParsers();
      registration.Unregister();
    }
    EXPECT_FALSE(watched.expired());
  }
  EXPECT_TRUE(watched.expired());
}

TEST_F(ParserServicesProvider, ServesTheLineParser) {
  (void)context().RegisterService<CodeElementParser>(
      std::make_shared<build::markup::code::PlainTextNodeParserImpl>(), prioritised("default"));
  const auto shared = std::make_shared<ParserServicesProviderImpl>();
  const auto document = std::make_shared<document::kdzero::TesseraDocument>();
  build::markup::code::LineNodeParserService(shared).parseLine(document, {u"x", {}, {}}, {});
  EXPECT_THAT(childTexts(document->getChildAt(0)), ElementsAre(u"x"));
}

}  // namespace
}  // namespace quenlith::test

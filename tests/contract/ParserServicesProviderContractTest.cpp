#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkEvent.h>
#include <cppmicroservices/FrameworkFactory.h>
#include <cppmicroservices/LDAPFilter.h>
#include <cppmicroservices/ServiceInterface.h>
#include <cppmicroservices/ServiceObjects.h>
#include <cppmicroservices/ServiceProperties.h>
#include <gtest/gtest.h>

#include "contract/FakeServices.hpp"
#include "contract/RecordedLog.hpp"
#include "foundation/cppmicroservices/getFramework.hpp"
#include "quenlith/build/markup/services/ParserServicesProvider.hpp"
#include "quenlith/build/markup/services/ParserServicesProviderImpl.hpp"

namespace {

using contract::CodeElementParser;
using contract::ElementContributor;
using contract::LineContributorDataParser;
using contract::PieceParser;
using contract::RecordedLog;
using cppmicroservices::Framework;
using cppmicroservices::ServiceProperties;
using foundation::cppmicroservices::getFramework;
using foundation::cppmicroservices::setFramework;
using quenlith::build::markup::services::ParserServicesProvider;
using quenlith::build::markup::services::ParserServicesProviderImpl;
using CodeElementParsers = std::vector<std::shared_ptr<CodeElementParser>>;
using Contributors = std::vector<std::shared_ptr<LineContributorDataParser>>;

static_assert(std::is_same_v<decltype(getFramework()), std::shared_ptr<Framework>>);
static_assert(std::is_abstract_v<ParserServicesProvider>);
static_assert(std::has_virtual_destructor_v<ParserServicesProvider>);
static_assert(std::is_base_of_v<ParserServicesProvider, ParserServicesProviderImpl>);
static_assert(std::is_default_constructible_v<ParserServicesProviderImpl>);
static_assert(
    std::is_same_v<decltype(std::declval<ParserServicesProvider&>().getCodeElementParsers()),
                   CodeElementParsers>);
static_assert(std::is_same_v<
              decltype(std::declval<ParserServicesProvider&>().getLineContributorDataParsers()),
              Contributors>);

TEST(ParserServicesProviderContract, TheInterfacesDeclareTheirIdentifiers) {
  EXPECT_EQ(us_service_interface_iid<CodeElementParser>(),
            "quenlith::build::markup::code::CodeElementParser");
  EXPECT_EQ(us_service_interface_iid<LineContributorDataParser>(),
            "quenlith::build::markup::contributordata::LineContributorDataParser");
  EXPECT_EQ(us_service_interface_iid<ParserServicesProvider>(),
            "quenlith::build::markup::services::ParserServicesProvider");
}

TEST(ParserServicesProviderContract, WithoutAFrameworkThereIsOneEmptyParser) {
  setFramework(nullptr);
  ASSERT_EQ(getFramework(), nullptr);
  ParserServicesProviderImpl provider;
  EXPECT_TRUE(provider.getLineContributorDataParsers().empty());
  const CodeElementParsers parsers = provider.getCodeElementParsers();
  ASSERT_EQ(parsers.size(), 1U);
  EXPECT_EQ(parsers[0], nullptr);
}

TEST(ParserServicesProviderContract, WithoutAFrameworkTheCountIsLoggedOnce) {
  setFramework(nullptr);
  const RecordedLog log;
  ParserServicesProviderImpl provider;
  provider.getCodeElementParsers();
  provider.getCodeElementParsers();
  EXPECT_EQ(log.messages(), std::vector<std::string>{"Found 0 non default code element parsers"});
}

/// A running framework in which services are registered, known to `getFramework`.
class ParserServicesProviderInAFramework : public testing::Test {
 protected:
  ParserServicesProviderInAFramework()
      : framework(
            std::make_shared<Framework>(cppmicroservices::FrameworkFactory().NewFramework())) {
    framework->Start();
    setFramework(framework);
  }

  ~ParserServicesProviderInAFramework() override {
    setFramework(nullptr);
    framework->Stop();
    framework->WaitForStop(std::chrono::milliseconds::zero());
  }

  std::shared_ptr<CodeElementParser> registerParser(const ServiceProperties& properties = {}) {
    std::shared_ptr<CodeElementParser> parser = std::make_shared<PieceParser>(u"output");
    framework->GetBundleContext().RegisterService<CodeElementParser>(parser, properties);
    return parser;
  }

  std::shared_ptr<CodeElementParser> registerDefault() {
    return registerParser({{"priority", std::string("default")}});
  }

  std::shared_ptr<LineContributorDataParser> registerContributor() {
    std::shared_ptr<LineContributorDataParser> parser =
        std::make_shared<ElementContributor>(u"output", u"feature");
    framework->GetBundleContext().RegisterService<LineContributorDataParser>(parser);
    return parser;
  }

  std::shared_ptr<Framework> framework;
  ParserServicesProviderImpl provider;
  RecordedLog log;
};

TEST_F(ParserServicesProviderInAFramework, TheFrameworkThatWasSetIsGiven) {
  EXPECT_EQ(getFramework(), framework);
}

TEST_F(ParserServicesProviderInAFramework, TheDefaultParserAloneIsTheList) {
  const auto last = registerDefault();
  EXPECT_EQ(provider.getCodeElementParsers(), CodeElementParsers{last});
  EXPECT_EQ(log.count("Found 0 non default code element parsers"), 1);
}

TEST_F(ParserServicesProviderInAFramework, TheDefaultParserIsLast) {
  const auto last = registerDefault();
  const auto first = registerParser();
  const auto second = registerParser({{"priority", std::string("high")}});
  const CodeElementParsers parsers = provider.getCodeElementParsers();
  ASSERT_EQ(parsers.size(), 3U);
  EXPECT_EQ(parsers, (CodeElementParsers{first, second, last}));
  EXPECT_EQ(log.count("Found 2 non default code element parsers"), 1);
}

TEST_F(ParserServicesProviderInAFramework, WithoutADefaultParserTheListEndsEmpty) {
  const auto only = registerParser();
  const CodeElementParsers expected{only, nullptr};
  EXPECT_EQ(provider.getCodeElementParsers(), expected);
  registerParser();
  registerDefault();
  EXPECT_EQ(provider.getCodeElementParsers(), expected);
  EXPECT_EQ(log.messages().size(), 1U);
}

TEST_F(ParserServicesProviderInAFramework, ContributorsAreLookedUpUntilThereIsOne) {
  EXPECT_TRUE(provider.getLineContributorDataParsers().empty());
  const auto first = registerContributor();
  EXPECT_EQ(provider.getLineContributorDataParsers(), Contributors{first});
  registerContributor();
  EXPECT_EQ(provider.getLineContributorDataParsers(), Contributors{first});
}

TEST_F(ParserServicesProviderInAFramework, EveryCallGivesACopyOfTheListThatTheProviderKeeps) {
  const auto last = registerDefault();
  const auto contributor = registerContributor();
  ParserServicesProvider& shared = provider;
  shared.getCodeElementParsers().clear();
  shared.getLineContributorDataParsers().clear();
  // A provider that gave its list away would look again and find these, too.
  registerParser();
  registerContributor();
  EXPECT_EQ(shared.getCodeElementParsers(), CodeElementParsers{last});
  EXPECT_EQ(shared.getLineContributorDataParsers(), Contributors{contributor});
}

TEST_F(ParserServicesProviderInAFramework, TheProviderKeepsItsServicesAliveUntilItIsDestroyed) {
  std::shared_ptr<CodeElementParser> parser = std::make_shared<PieceParser>(u"output");
  const std::weak_ptr<CodeElementParser> watched = parser;
  auto registration = framework->GetBundleContext().RegisterService<CodeElementParser>(
      parser, {{"priority", std::string("default")}});
  parser.reset();
  std::unique_ptr<ParserServicesProvider> owned = std::make_unique<ParserServicesProviderImpl>();
  owned->getCodeElementParsers();
  registration.Unregister();
  registration = nullptr;
  ASSERT_FALSE(watched.expired());
  EXPECT_EQ(owned->getCodeElementParsers().back(), watched.lock());
  owned.reset();
  EXPECT_TRUE(watched.expired());
}

TEST_F(ParserServicesProviderInAFramework, AFilterIsMadeFromAString) {
  EXPECT_EQ(cppmicroservices::LDAPFilter("(priority=default)").ToString(), "(priority=default)");
  EXPECT_EQ(cppmicroservices::LDAPFilter(std::string("(!(priority=default))")).ToString(),
            "(!(priority=default))");
  EXPECT_EQ(cppmicroservices::LDAPFilter().ToString(), "");
}

TEST_F(ParserServicesProviderInAFramework, AServiceIsObtainedThroughItsReference) {
  const auto last = registerDefault();
  cppmicroservices::BundleContext context = framework->GetBundleContext();
  const auto references = context.GetServiceReferences(
      us_service_interface_iid<CodeElementParser>(), "(priority=default)");
  ASSERT_EQ(references.size(), 1U);
  const cppmicroservices::ServiceReference<CodeElementParser> reference(references[0]);
  EXPECT_EQ(context.GetServiceObjects(reference).GetService(), last);
}

}  // namespace

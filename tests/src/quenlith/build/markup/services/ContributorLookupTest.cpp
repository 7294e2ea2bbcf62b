#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/ServiceEvent.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "quenlith/build/markup/services/ProviderFixture.hpp"

namespace quenlith::test {
namespace {

using cppmicroservices::ServiceEvent;
using cppmicroservices::ServiceRegistration;
using testing::ElementsAre;
using testing::IsEmpty;

/// The lookup of contributor data parsers while services are registered and unregistered.
class ContributorLookup : public ProviderFixture {
 protected:
  using Contributors = std::vector<std::shared_ptr<LineContributorDataParser>>;

  /// Calls `action` when a contributor is registered.
  void whenRegistered(std::function<void()> action) {
    (void)context().AddServiceListener([action = std::move(action)](const ServiceEvent& event) {
      if (event.GetType() == ServiceEvent::SERVICE_REGISTERED) action();
    });
  }

  /// Returns the text of the std::runtime_error of a lookup, "" when it returns a list.
  std::string failureOfLookup() {
    try {
      provider.getLineContributorDataParsers();
      return "";
    } catch (const std::runtime_error& failure) {
      return failure.what();
    }
  }

  /// Registers a factory that unregisters `other` before it makes its own service.
  template <class Service>
  std::shared_ptr<Service> addRemover(std::shared_ptr<Service> made,
                                      ServiceRegistration<Service>& other) {
    addFactory<Service>(
        [made, &other] {
          other.Unregister();
          return cppmicroservices::MakeInterfaceMap<Service>(made);
        },
        ranked(1));
    return made;
  }
};

TEST_F(ContributorLookup, FindsAContributorInsideItsRegisteredEvent) {
  Contributors found;
  whenRegistered([&] { found = provider.getLineContributorDataParsers(); });
  EXPECT_THAT(provider.getLineContributorDataParsers(), IsEmpty());
  const auto contributor = addContributor();
  EXPECT_THAT(found, ElementsAre(contributor));
}

TEST_F(ContributorLookup, FindsAContributorWhileAnEarlierListenerOfItRuns) {
  Contributors found;
  whenRegistered(
      [&] { std::thread([&] { found = provider.getLineContributorDataParsers(); }).join(); });
  EXPECT_THAT(provider.getLineContributorDataParsers(), IsEmpty());
  const auto contributor = addContributor();
  EXPECT_THAT(found, ElementsAre(contributor));
}

TEST_F(ContributorLookup, ThrowsInsideAListenerThatStoppedTheFramework) {
  std::string failure;
  whenRegistered([&] {
    stop();
    failure = failureOfLookup();
  });
  EXPECT_THAT(provider.getLineContributorDataParsers(), IsEmpty());
  addContributor();
  EXPECT_EQ(failure, "The bundle context is no longer valid");
}

TEST_F(ContributorLookup, SkipsAContributorUnregisteredAfterItWasFound) {
  auto gone = context().RegisterService<LineContributorDataParser>(makeContributor());
  const auto remover = addRemover(makeContributor(), gone);
  EXPECT_THAT(provider.getLineContributorDataParsers(), ElementsAre(remover));
}

TEST_F(ContributorLookup, SkipsAnElementParserUnregisteredAfterItWasFound) {
  auto gone = context().RegisterService<CodeElementParser>(makeElementParser());
  const auto remover = addRemover(makeElementParser(), gone);
  const auto last = addElementParser(prioritised("default"));
  EXPECT_THAT(provider.getCodeElementParsers(), ElementsAre(remover, last));
}

TEST_F(ContributorLookup, ThrowsWhenTheFrameworkStopsBetweenTwoContributors) {
  addFactory<LineContributorDataParser>(
      [this] {
        stop();
        return cppmicroservices::MakeInterfaceMap<LineContributorDataParser>(makeContributor());
      },
      ranked(1));
  addContributor();
  EXPECT_EQ(failureOfLookup(), "The bundle context is no longer valid");
}

}  // namespace
}  // namespace quenlith::test

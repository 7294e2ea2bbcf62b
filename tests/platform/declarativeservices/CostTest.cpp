#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <cppmicroservices/ServiceRegistration.h>

#include "components/ComponentDescription.hpp"
#include "declarativeservices/Runtime.hpp"
#include "declarativeservices/describeCircle.hpp"
#include "framework/FrameworkFixture.hpp"
#include "platform/declarativeservices/MadeBundles.hpp"
#include "support/CountedWork.hpp"

using cppmicroservices::Bundle;
using cppmicroservices::ServiceRegistrationU;
using cppmicroservices::declarativeservices::describeCircle;
using cppmicroservices::declarativeservices::Runtime;
using cppmicroservices::detail::ComponentDescription;
using quenlith::test::countedWork;

namespace {

/// Ten times as much costs at most `ratio` times as much: ten times, and more by the depth of the
/// search trees only.
void expectLinear(std::size_t few, std::uint64_t ratio,
                  const std::function<std::uint64_t(std::size_t)>& workOf) {
  const std::uint64_t little = workOf(few);
  ASSERT_GT(little, few);
  EXPECT_LT(workOf(10 * few), ratio * little);
}

std::string number(const std::string& name, std::size_t n) {
  return name + std::to_string(n);
}

std::uint64_t workOfDescribing(const std::vector<ComponentDescription>& components, bool isCircle) {
  std::vector<const ComponentDescription*> waiting;
  for (const ComponentDescription& component : components) waiting.push_back(&component);
  const std::uint64_t before = countedWork();
  EXPECT_EQ(describeCircle(waiting).empty(), !isCircle);
  return countedWork() - before;
}

ComponentDescription waiting(const std::string& provided, const std::string& needed) {
  return {.name = provided,
          .interfaceIds = {provided},
          .properties = {},
          .references = {{"reference", needed}}};
}

TEST(DescribeCircleCost, OfAChainIsLinear) {
  expectLinear(1000, 18, [](std::size_t n) {
    std::vector<ComponentDescription> chain;
    for (std::size_t i = 0; i < n; ++i)
      chain.push_back(waiting(number("a", i), number("a", i + 1)));
    return workOfDescribing(chain, false);
  });
}

TEST(DescribeCircleCost, OfACircleIsLinear) {
  expectLinear(1000, 18, [](std::size_t n) {
    std::vector<ComponentDescription> circle;
    for (std::size_t i = 0; i < n; ++i) {
      circle.push_back(waiting(number("a", i), number("a", (i + 1) % n)));
    }
    return workOfDescribing(circle, true);
  });
}

TEST(DescribeCircleCost, OfManyProvidersOfOneInterfaceIsLinear) {
  expectLinear(1000, 18, [](std::size_t n) {
    std::vector<ComponentDescription> all;
    for (std::size_t i = 0; i < n; ++i) all.push_back(waiting("a", "a"));
    return workOfDescribing(all, true);
  });
}

/// The work of the runtime itself; that of the framework is not counted.
class RuntimeCost : public FrameworkFixture {
 protected:
  void SetUp() override {
    FrameworkFixture::SetUp();
    runtime = std::make_shared<Runtime>(context);
    runtime->start();
  }
  void TearDown() override {
    runtime->stop();
    FrameworkFixture::TearDown();
  }

  std::vector<Bundle> start(const std::vector<std::vector<MadeComponent>>& bundles) {
    auto installed = installMade(context, number("cost", ++libraries), bundles);
    for (Bundle& bundle : installed) bundle.Start();
    return installed;
  }

  std::shared_ptr<Runtime> runtime;
  std::size_t libraries = 0;
};

TEST_F(RuntimeCost, OfBundlesThatNeedOneServiceIsLinear) {
  expectLinear(100, 12, [this](std::size_t n) {
    const std::uint64_t before = countedWork();
    auto bundles = start(std::vector(
        n, std::vector<MadeComponent>{{"demo::Fine", {"svc.provided"}, {"svc.needed"}}}));
    const auto needed = registerNamed(context, "svc.needed");
    EXPECT_EQ(context.GetServiceReferences("svc.provided").size(), n);
    for (Bundle& bundle : bundles) bundle.Uninstall();
    return countedWork() - before;
  });
}

TEST_F(RuntimeCost, OfServicesThatAComponentMayUseIsLinear) {
  start({{{"demo::Fine", {"svc.ready"}, {"svc.a"}},
          {"demo::Needs", {"svc.waiting"}, {"svc.a", "svc.b"}}}});
  expectLinear(100, 12, [this](std::size_t n) {
    const std::uint64_t before = countedWork();
    std::vector<ServiceRegistrationU> services;
    for (std::size_t i = 0; i < n; ++i) services.push_back(registerNamed(context, "svc.a"));
    // The preferred one goes first.
    for (ServiceRegistrationU& service : services) service.Unregister();
    return countedWork() - before;
  });
}

}  // namespace

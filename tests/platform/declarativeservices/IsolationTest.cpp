#include <gmock/gmock.h>

#include <chrono>
#include <cstddef>
#include <exception>
#include <future>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include <cppmicroservices/FrameworkEvent.h>
#include <cppmicroservices/ServiceEvent.h>
#include <cppmicroservices/ServiceInterface.h>

#include "framework/FrameworkFixture.hpp"
#include "platform/declarativeservices/MadeBundles.hpp"
#include "support/FailingAllocations.hpp"

using cppmicroservices::Bundle;
using cppmicroservices::Framework;
using cppmicroservices::FrameworkEvent;
using cppmicroservices::FrameworkFactory;
using cppmicroservices::ServiceEvent;
using cppmicroservices::ServiceRegistrationU;
using quenlith::test::allocationCount;
using quenlith::test::AllocationHook;
using quenlith::test::FailingAllocations;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

// Cannot be registered: the framework refuses a factory without another interface.
const std::string kRefused = cppmicroservices::detail::kFactoryKey;

/// What a component that fails leaves of the others.
class Isolation : public FrameworkFixture {
 protected:
  std::vector<Bundle> install(const std::vector<std::vector<MadeComponent>>& bundles) {
    const std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    return installMade(context, name, bundles);
  }

  std::vector<Bundle> start(const std::vector<std::vector<MadeComponent>>& bundles) {
    std::vector<Bundle> installed = install(bundles);
    for (Bundle& bundle : installed) bundle.Start();
    return installed;
  }

  bool isOffered(const std::string& interfaceId) {
    return static_cast<bool>(context.GetServiceReference(interfaceId));
  }
};

TEST_F(Isolation, ComponentThatCannotBeRegisteredIsReportedAndTheOthersOfItsBundleAreOffered) {
  startRuntime();
  Bundle reported;
  context.AddFrameworkListener(
      [&reported](const FrameworkEvent& event) { reported = event.GetBundle(); });
  const Bundle bundle = start({{{"demo::Fine", {"svc.early"}, {}},
                                {"demo::ThrowsError", {kRefused}, {}},
                                {"demo::Needs", {"svc.late"}, {}}}})
                            .at(0);
  EXPECT_TRUE(isOffered("svc.early"));
  EXPECT_TRUE(isOffered("svc.late"));
  EXPECT_THAT(takeProblems(),
              ElementsAre(AllOf(HasSubstr(bundle.GetLocation()),
                                HasSubstr("component demo::ThrowsError: its service cannot be "
                                          "registered: the service to register has no "
                                          "interface"))));
  EXPECT_EQ(reported, bundle);
}

TEST_F(Isolation, ComponentThatCannotBeRegisteredDoesNotAffectThoseOfOtherBundles) {
  startRuntime();
  start({{{"demo::Fine", {kRefused}, {"svc.needed"}}},
         {{"demo::Fine", {"svc.sound"}, {"svc.needed"}}}});
  const auto needed = registerNamed(context, "svc.needed");
  EXPECT_TRUE(isOffered("svc.sound"));
  EXPECT_THAT(takeProblems(), ElementsAre(HasSubstr("component demo::Fine: its service cannot")));
}

TEST_F(Isolation, RegistrationThatFailedIsTriedAgainWithTheNextService) {
  startRuntime();
  start({{{"demo::Fine", {kRefused}, {"svc.needed"}}}});
  const auto first = registerNamed(context, "svc.needed");
  EXPECT_THAT(takeProblems(), testing::SizeIs(1));
  const auto second = registerNamed(context, "svc.needed");
  EXPECT_THAT(takeProblems(), testing::SizeIs(1));
}

TEST_F(Isolation, RegistrationThatFailedIsNotTriedAgainWhenAServiceIsModified) {
  startRuntime();
  start({{{"demo::Fine", {kRefused}, {"svc.needed"}}}});
  auto needed = registerNamed(context, "svc.needed");
  EXPECT_THAT(takeProblems(), testing::SizeIs(1));
  needed.SetProperties({{"kind", std::string("other")}});
  EXPECT_THAT(takeProblems(), IsEmpty());
}

TEST_F(Isolation, RuntimeStartsWhileABundleStops) {
  // The first service stops the bundle, whose other components have not been started by then.
  Bundle bundle =
      start({{{"demo::Fine", {"svc.first"}, {}}, {"demo::Needs", {"svc.second"}, {"svc.first"}}}})
          .at(0);
  context.AddServiceListener(
      [&bundle](const ServiceEvent& event) {
        if (event.GetType() == ServiceEvent::SERVICE_REGISTERED) bundle.Stop();
      },
      "(objectclass=svc.first)");
  Bundle runtime = context.InstallBundles(SCR_BUNDLE).at(0);
  EXPECT_NO_THROW(runtime.Start());
  EXPECT_EQ(runtime.GetState(), Bundle::STATE_ACTIVE);
  EXPECT_EQ(bundle.GetState(), Bundle::STATE_RESOLVED);
  EXPECT_FALSE(isOffered("svc.first"));
  EXPECT_FALSE(isOffered("svc.second"));
  EXPECT_THAT(takeProblems(), IsEmpty());
}

TEST_F(Isolation, RuntimeDoesNotLookAtABundleThatDoesNotRun) {
  Bundle bundle =
      install({{{"demo::Fine", {"svc.first"}, {}}, {"demo::Missing", {"svc.second"}, {}}}}).at(0);
  startRuntime();
  EXPECT_FALSE(isOffered("svc.first"));
  EXPECT_THAT(takeProblems(), IsEmpty());
  bundle.Start();
  EXPECT_TRUE(isOffered("svc.first"));
  EXPECT_THAT(takeProblems(), ElementsAre(HasSubstr("component demo::Missing: the library")));
}

TEST_F(Isolation, BundleThatStartsWhileTheRuntimeStartsIsOfferedOnce) {
  std::vector<Bundle> bundles =
      install({{{"demo::Fine", {"svc.first"}, {}}}, {{"demo::Fine", {"svc.second"}, {}}}});
  bundles[0].Start();
  // The runtime is told of the start, and finds the bundle active after that.
  context.AddServiceListener(
      [&bundles](const ServiceEvent& event) {
        if (event.GetType() == ServiceEvent::SERVICE_REGISTERED) bundles[1].Start();
      },
      "(objectclass=svc.first)");
  startRuntime();
  EXPECT_EQ(context.GetServiceReferences("svc.second").size(), 1U);
  EXPECT_THAT(takeProblems(), IsEmpty());
}

TEST_F(Isolation, ServiceOfAnotherFrameworkIsNotBound) {
  startRuntime();
  Framework other = FrameworkFactory().NewFramework();
  other.Start();
  const auto elsewhere = registerNamed(other.GetBundleContext(), "svc.needed");
  start({{{"demo::Fine", {"svc.built"}, {"svc.needed"}}}});
  EXPECT_FALSE(isOffered("svc.built"));
  EXPECT_THAT(takeProblems(), IsEmpty());
  const auto needed = registerNamed(context, "svc.needed");
  EXPECT_TRUE(isOffered("svc.built"));
}

TEST_F(Isolation, ScopeOfInterfacesIsIgnoredWhicheverBundleStartsFirst) {
  startRuntime();
  start({{{"demo::Fine", {"svc.a"}, {"::svc.provided"}}},
         {{"demo::Fine", {"::svc.provided"}, {}}},
         {{"demo::Fine", {"svc.b"}, {"::svc.provided"}}}});
  EXPECT_TRUE(isOffered("svc.a"));
  EXPECT_TRUE(isOffered("svc.b"));
}

TEST_F(Isolation, ScopeOfInterfacesIsNotPartOfWhatTheFactoryProvides) {
  startRuntime();
  const auto word = context.RegisterService(std::make_shared<cppmicroservices::InterfaceMap>(
      cppmicroservices::InterfaceMap{{"demo::Word", std::make_shared<int>(1)}}));
  start({{{"demo::Needs", {"::demo::Broken"}, {"::demo::Word"}}}});
  EXPECT_NE(context.GetService(context.GetServiceReference<demo::Broken>()), nullptr);
  EXPECT_THAT(takeProblems(), IsEmpty());
}

TEST_F(Isolation, BundleMayStopAtAnyPointWhileItsComponentBecomesReady) {
  Bundle runtime = startRuntime();
  Bundle stopping = start({{{"demo::Fine", {"svc.x"}, {"svc.needed"}}},
                           {{"demo::Fine", {"svc.y"}, {"svc.needed"}}}})
                        .at(0);
  bool hasStopped = true;
  for (std::size_t number = 0; hasStopped; ++number) {
    std::future<void> stop;
    const auto stopElsewhere = [&] {
      stop = std::async(std::launch::async, [&stopping] { stopping.Stop(); });
      // Not to its end when the allocation is made under a lock that it needs.
      stop.wait_for(std::chrono::milliseconds(20));
    };
    ServiceRegistrationU needed;
    {
      const AllocationHook hook(number, stopElsewhere);
      needed = registerNamed(context, "svc.needed");
      hasStopped = hook.hasCalled();
    }
    if (hasStopped) stop.get();
    ASSERT_EQ(isOffered("svc.x"), !hasStopped) << number;
    ASSERT_TRUE(isOffered("svc.y")) << number;
    ASSERT_THAT(takeProblems(), IsEmpty()) << number;
    needed.Unregister();
    stopping.Start();
  }
}

/// Runs `operation` with its n-th allocation failing, and then with all from the n-th on, for every
/// n until there is no n-th. Calls `check` after each run with how many fail, and whether
/// `operation` has thrown.
template <class Operation, class Check>
void failEach(const Operation& operation, const Check& check) {
  for (const std::size_t count : {std::size_t{1}, std::numeric_limits<std::size_t>::max()}) {
    for (std::size_t number = 0;; ++number) {
      bool hasThrown = false;
      const std::size_t before = allocationCount();
      try {
        const FailingAllocations failures(number, count);
        operation();
      } catch (const std::exception&) {
        hasThrown = true;
      }
      const bool isInjected = allocationCount() - before > number;
      check(count, hasThrown);
      if (testing::Test::HasFatalFailure() || !isInjected) break;
    }
  }
}

TEST_F(Isolation, RuntimeThatCannotStartLeavesNoComponents) {
  start({{{"demo::Fine", {"svc.early"}, {}}, {"demo::Needs", {"svc.late"}, {"svc.early"}}}});
  Bundle runtime = context.InstallBundles(SCR_BUNDLE).at(0);
  failEach([&] { runtime.Start(); },
           [&](std::size_t count, bool hasThrown) {
             const bool isReported = !takeProblems().empty();
             if (hasThrown) {
               ASSERT_FALSE(isOffered("svc.early"));
               ASSERT_FALSE(isOffered("svc.late"));
               runtime.Start();
               ASSERT_EQ(context.GetServiceReferences("svc.early").size(), 1U);
               ASSERT_EQ(context.GetServiceReferences("svc.late").size(), 1U);
             } else if (count == 1) {
               // There is memory for the report of a component that is not offered.
               ASSERT_TRUE(isReported || (isOffered("svc.early") && isOffered("svc.late")));
             }
             runtime.Stop();
           });
}

TEST_F(Isolation, RuntimeStopsAllComponentsWhateverFails) {
  start({{{"demo::Fine", {"svc.early"}, {}}}, {{"demo::Needs", {"svc.late"}, {"svc.early"}}}});
  Bundle runtime = startRuntime();
  failEach([&] { runtime.Stop(); },
           [&](std::size_t /*count*/, bool /*hasThrown*/) {
             ASSERT_FALSE(isOffered("svc.early"));
             ASSERT_FALSE(isOffered("svc.late"));
             runtime.Start();
             ASSERT_TRUE(isOffered("svc.late"));
           });
}

}  // namespace

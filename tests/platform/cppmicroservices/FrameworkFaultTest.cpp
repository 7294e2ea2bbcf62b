#include <cppmicroservices/BundleEvent.h>
#include <cppmicroservices/LDAPFilter.h>
#include <cppmicroservices/ServiceEvent.h>
#include <cppmicroservices/ServiceFactory.h>
#include <cppmicroservices/ServiceTracker.h>

#include <filesystem>
#include <iostream>
#include <limits>
#include <stdexcept>

#include "framework/broken/BundleFile.hpp"
#include "platform/cppmicroservices/HostFramework.hpp"
#include "platform/cppmicroservices/Script.hpp"
#include "support/FailingAllocations.hpp"

namespace embedded_framework {
namespace {

using namespace cppmicroservices;
using quenlith::test::allocationCount;
using quenlith::test::FailingAllocations;
using quenlith::test::liveAllocations;

/// How many allocations fail, beginning with the n-th.
enum class Failing : std::size_t { kOne = 1, kAll = std::numeric_limits<std::size_t>::max() };

std::size_t injectedFaults = 0;

/// Runs `operation` with its n-th allocation failing, for every n until there is no n-th, once and
/// from then on. Calls `check` after each run with what `operation` did: it threw, or it succeeded
/// anyway. A run that threw must not leak.
template <class Operation, class Check>
void failEach(const Operation& operation, const Check& check) {
  for (const Failing failing : {Failing::kOne, Failing::kAll}) {
    for (std::size_t number = 0;; ++number) {
      bool hasThrown = false;
      const std::size_t before = allocationCount();
      try {
        const FailingAllocations failures(number, static_cast<std::size_t>(failing));
        operation();
      } catch (const std::exception&) {
        hasThrown = true;
      }
      const bool isInjected = allocationCount() - before > number;
      check(hasThrown);
      if (testing::Test::HasFatalFailure()) return;
      if (!isInjected) {
        ASSERT_FALSE(hasThrown);
        break;
      }
      ++injectedFaults;
    }
  }
}

/// Like `failEach`, for an operation that changes nothing when it throws: such a run must not leak.
template <class Operation, class Check>
void failEachWithoutLeak(const Operation& operation, const Check& check) {
  std::ptrdiff_t live = 0;
  const auto counted = [&] {
    live = liveAllocations();
    operation();
  };
  failEach(counted, [&](bool hasThrown) {
    if (hasThrown) {
      ASSERT_EQ(liveAllocations(), live);
    }
    check(hasThrown);
  });
}

/// Counts the objects that it has made and not got back.
class LendingFactory : public ServiceFactory {
 public:
  InterfaceMapConstPtr GetService(const Bundle&, const ServiceRegistrationBase&) override {
    InterfaceMapConstPtr service = MakeInterfaceMap<Greeter>(std::make_shared<Hello>());
    ++lent;
    return service;
  }
  void UngetService(const Bundle&, const ServiceRegistrationBase&,
                    const InterfaceMapConstPtr&) override {
    --lent;
  }

  int lent = 0;
};

/// Makes no object.
class EmptyFactory : public ServiceFactory {
 public:
  InterfaceMapConstPtr GetService(const Bundle&, const ServiceRegistrationBase&) override {
    return nullptr;
  }
  void UngetService(const Bundle&, const ServiceRegistrationBase&,
                    const InterfaceMapConstPtr&) override {}
};

class FrameworkFaults : public HostFramework {
 protected:
  // Not in the constructor of HostFramework: its listener allocates when it is told of an error.
  FrameworkFaults() {
    stop();
    framework.Start();
    context = framework.GetBundleContext();
    scripts = context.RegisterService<Script>(script);
    script->start = [this](BundleContext own) {
      (void)own.RegisterService<Greeter>(std::make_shared<Hello>());
      own.AddServiceListener([this](const ServiceEvent&) { ++heard; }, "(objectclass=*)");
      used = own.GetService(own.GetServiceReference<Script>());
    };
    script->stop = [this](const BundleContext&) { used = nullptr; };
  }
  ~FrameworkFaults() override {
    // What bundles call when they stop belongs to this class.
    stop();
    *script = Script();
    std::cout << injectedFaults << " faults injected so far\n";
  }

  Bundle startedBundle() {
    Bundle bundle = context.InstallBundles(SCRIPTED_BUNDLE).at(0);
    bundle.Start();
    return bundle;
  }

  // Says whether `bundle` left nothing behind.
  bool hasNothing(const Bundle& bundle) {
    const int before = heard;
    context.RegisterService<Counter>(std::make_shared<Counter>()).Unregister();
    return bundle.GetRegisteredServices().empty() && bundle.GetServicesInUse().empty() &&
           !bundle.GetBundleContext() && heard == before;
  }

  std::shared_ptr<Script> script = std::make_shared<Script>();
  std::shared_ptr<Script> used;
  ServiceRegistration<Script> scripts;
  int heard = 0;
};

TEST_F(FrameworkFaults, LibraryIsInstalledAsAWholeOrNotAtAll) {
  const std::string path = std::string(WORK_FOLDER) + "/faults.so";
  std::filesystem::create_directories(WORK_FOLDER);
  writeBytes(
      path,
      makeArchive({{"one/manifest.json", R"({"bundle.symbolic_name":"one"})"},
                   {"two/manifest.json", R"({"bundle.symbolic_name":"two","a":[1,{"b":"c"}]})"}},
                  0));
  // The framework stops, and sends events, after the test has returned.
  const auto events = std::make_shared<int>(0);
  context.AddBundleListener([events](const BundleEvent&) { ++*events; });
  failEachWithoutLeak([&] { context.InstallBundles(path); },
                      [&](bool hasThrown) {
                        ASSERT_EQ(context.GetBundles().size(), hasThrown ? 1U : 3U);
                        ASSERT_EQ(std::exchange(*events, 0), hasThrown ? 0 : 2);
                        for (Bundle& bundle : context.GetBundles(path)) bundle.Uninstall();
                        *events = 0;
                      });
}

TEST_F(FrameworkFaults, UninstalledBundleIsInstalledAgainOrNot) {
  const std::string path = std::string(WORK_FOLDER) + "/faults.so";
  std::filesystem::create_directories(WORK_FOLDER);
  writeBytes(path, makeArchive({{"one/manifest.json", R"({"bundle.symbolic_name":"one"})"},
                                {"two/manifest.json", R"({"bundle.symbolic_name":"two"})"}},
                               0));
  context.InstallBundles(path).at(0).Uninstall();
  failEachWithoutLeak([&] { context.InstallBundles(path); },
                      [&](bool hasThrown) {
                        ASSERT_EQ(context.GetBundles(path).size(), hasThrown ? 1U : 2U);
                        if (!hasThrown) context.GetBundles(path).at(1).Uninstall();
                      });
}

TEST_F(FrameworkFaults, BundleIsStartedOrNot) {
  Bundle bundle = context.InstallBundles(SCRIPTED_BUNDLE).at(0);
  bundle.Start();
  bundle.Stop();
  failEach([&] { bundle.Start(); },
           [&](bool hasThrown) {
             ASSERT_EQ(bundle.GetState(),
                       hasThrown ? Bundle::STATE_RESOLVED : Bundle::STATE_ACTIVE);
             // A retry succeeds.
             if (hasThrown) {
               used = nullptr;
               ASSERT_TRUE(hasNothing(bundle));
               bundle.Start();
             }
             ASSERT_EQ(bundle.GetRegisteredServices().size(), 1U);
             bundle.Stop();
             ASSERT_TRUE(hasNothing(bundle));
           });
}

TEST_F(FrameworkFaults, BundleStopsWhateverFails) {
  Bundle bundle = startedBundle();
  const auto check = [&](bool /*hasThrown*/) {
    ASSERT_EQ(bundle.GetState(), Bundle::STATE_RESOLVED);
    ASSERT_TRUE(hasNothing(bundle));
    bundle.Start();
  };
  failEach([&] { bundle.Stop(); }, check);
  script->stop = [this](const BundleContext&) {
    used = nullptr;
    throw std::runtime_error("a text that is too long to be stored without an allocation");
  };
  for (const Failing failing : {Failing::kOne, Failing::kAll}) {
    for (std::size_t number = 0; number < 20; ++number) {
      try {
        const FailingAllocations failures(number, static_cast<std::size_t>(failing));
        bundle.Stop();
        ADD_FAILURE() << number;
      } catch (const std::exception&) {
        check(true);
      }
    }
  }
}

TEST_F(FrameworkFaults, BundleIsUninstalledWhateverFails) {
  Bundle bundle = startedBundle();
  script->stop = [this](const BundleContext&) {
    used = nullptr;
    throw std::runtime_error("a text that is too long to be stored without an allocation");
  };
  failEach([&] { bundle.Uninstall(); },
           [&](bool hasThrown) {
             ASSERT_FALSE(hasThrown);
             ASSERT_EQ(bundle.GetState(), Bundle::STATE_UNINSTALLED);
             ASSERT_EQ(context.GetBundles().size(), 1U);
             bundle = startedBundle();
           });
}

TEST_F(FrameworkFaults, FrameworkStopsWhateverFails) {
  Bundle bundle = startedBundle();
  script->stop = [this](const BundleContext&) {
    used = nullptr;
    throw std::runtime_error("a text that is too long to be stored without an allocation");
  };
  failEach([&] { framework.Stop(); },
           [&](bool hasThrown) {
             ASSERT_FALSE(hasThrown);
             ASSERT_EQ(framework.GetState(), Bundle::STATE_RESOLVED);
             ASSERT_EQ(bundle.GetState(), Bundle::STATE_INSTALLED);
             framework.Start();
             context = framework.GetBundleContext();
             scripts = context.RegisterService<Script>(script);
             bundle = startedBundle();
           });
}

TEST_F(FrameworkFaults, FrameworkIsMadeAndStartedOrNot) {
  failEachWithoutLeak(
      [] {
        Framework other = FrameworkFactory().NewFramework();
        other.Start();
        (void)other.GetBundleContext().RegisterService<Greeter>(std::make_shared<Hello>());
        other.GetBundleContext().AddBundleListener([](const BundleEvent&) {});
      },
      [](bool /*hasThrown*/) {});
}

TEST_F(FrameworkFaults, ServiceIsRegisteredChangedAndUnregisteredOrNot) {
  int told = 0;
  context.AddServiceListener([&](const ServiceEvent&) { ++told; }, "(|(objectclass=*)(k=v*w))");
  ServiceRegistration<Greeter, Counter> added;
  const auto service = std::make_shared<CountingHello>();
  failEachWithoutLeak(
      [&] {
        added = context.RegisterService<Greeter, Counter>(
            service, {{"service.ranking", Any(std::string("wrong"))}});
      },
      [&](bool hasThrown) {
        ASSERT_EQ(context.GetServiceReferences<Greeter>().size(), hasThrown ? 0U : 1U);
        ASSERT_EQ(context.GetServiceReferences<Counter>().size(), hasThrown ? 0U : 1U);
        ASSERT_EQ(std::exchange(told, 0), hasThrown ? 0 : 1);
        if (!hasThrown) added.Unregister();
        added = nullptr;
        told = 0;
      });
  added = context.RegisterService<Greeter, Counter>(service, {{"k", Any(1)}});
  told = 0;
  failEach(
      [&] {
        added.SetProperties({{"k", Any(2)}, {"service.ranking", Any(7)}});
      },
      [&](bool hasThrown) {
        ASSERT_EQ(any_cast<int>(added.GetReference().GetProperty("k")), hasThrown ? 1 : 2);
        ASSERT_EQ(std::exchange(told, 0), hasThrown ? 0 : 1);
        added.SetProperties({{"k", Any(1)}});
        told = 0;
      });
  added.Unregister();
}

TEST_F(FrameworkFaults, ServiceIsFoundAndGotOrNot) {
  const auto factory = std::make_shared<LendingFactory>();
  auto plain = context.RegisterService<Counter>(std::make_shared<Counter>(), {{"k", Any(1)}});
  auto made = context.RegisterService<Greeter>(ToFactory(factory));
  std::size_t found = 0;
  failEachWithoutLeak(
      [&] { found = context.GetServiceReferences<Counter>("(&(k=1)(objectclass=*))").size(); },
      [&](bool hasThrown) { ASSERT_EQ(std::exchange(found, 0), hasThrown ? 0U : 1U); });
  std::shared_ptr<Counter> counter;
  failEachWithoutLeak([&] { counter = context.GetService(plain.GetReference()); },
                      [&](bool hasThrown) {
                        ASSERT_EQ(counter == nullptr, hasThrown);
                        ASSERT_EQ(plain.GetReference().GetUsingBundles().size(),
                                  hasThrown ? 0U : 1U);
                        counter = nullptr;
                        ASSERT_TRUE(plain.GetReference().GetUsingBundles().empty());
                      });
  std::shared_ptr<Greeter> greeter;
  // A factory that runs out of memory is reported, and the caller gets null.
  failEach([&] { greeter = context.GetService(made.GetReference()); },
           [&](bool hasThrown) {
             ASSERT_FALSE(hasThrown && greeter);
             ASSERT_EQ(factory->lent, greeter ? 1 : 0);
             greeter = nullptr;
             ASSERT_EQ(factory->lent, 0);
             ASSERT_TRUE(made.GetReference().GetUsingBundles().empty());
           });
}

TEST_F(FrameworkFaults, FactoryThatMakesNothingIsReportedOrNot) {
  auto made = context.RegisterService<Greeter>(ToFactory(std::make_shared<EmptyFactory>()));
  int reports = 0;
  ListenerToken token = context.AddFrameworkListener([&](const FrameworkEvent&) { ++reports; });
  int silentCalls = 0;
  failEach([&] { EXPECT_EQ(context.GetService(made.GetReference()), nullptr); },
           [&](bool hasThrown) {
             ASSERT_TRUE(made.GetReference().GetUsingBundles().empty());
             ASSERT_LE(reports, 1);
             if (!hasThrown && reports == 0) ++silentCalls;
             reports = 0;
           });
  // The report that there was no memory for is dropped.
  EXPECT_GT(silentCalls, 0);
  EXPECT_EQ(context.GetService(made.GetReference()), nullptr);
  EXPECT_EQ(reports, 1);
  context.RemoveListener(std::move(token));
}

TEST_F(FrameworkFaults, ListenerThatThrowsIsReportedOrNot) {
  context.AddServiceListener([](const ServiceEvent&) { throw 5; });
  int reports = 0;
  ListenerToken token = context.AddFrameworkListener([&](const FrameworkEvent&) { ++reports; });
  ServiceRegistration<Counter> registration;
  const auto add = [&] {
    registration = context.RegisterService<Counter>(std::make_shared<Counter>());
    reports = 0;
  };
  add();
  int silentCalls = 0;
  failEach([&] { registration.Unregister(); },
           [&](bool hasThrown) {
             ASSERT_FALSE(hasThrown);
             ASSERT_LE(reports, 1);
             if (reports == 0) ++silentCalls;
             add();
           });
  // The report that there was no memory for is dropped.
  EXPECT_GT(silentCalls, 0);
  registration.Unregister();
  EXPECT_EQ(reports, 1);
  context.RemoveListener(std::move(token));
}

TEST_F(FrameworkFaults, ListenerIsToldWhenItsFilterCannotBeEvaluated) {
  // Compared without its spaces, which takes a copy.
  const std::string text = "a text that is too long to be stored without an allocation";
  int told = 0;
  context.AddServiceListener([&](const ServiceEvent&) { ++told; }, "(k~=" + text + ")");
  ServiceRegistration<Counter> registration;
  const auto add = [&] {
    registration =
        context.RegisterService<Counter>(std::make_shared<Counter>(), {{"k", Any(text)}});
    told = 0;
  };
  add();
  const std::size_t faults = injectedFaults;
  failEach([&] { registration.Unregister(); },
           [&](bool hasThrown) {
             ASSERT_FALSE(hasThrown);
             ASSERT_EQ(told, 1);
             add();
           });
  EXPECT_GT(injectedFaults, faults);
  registration.Unregister();
}

TEST_F(FrameworkFaults, ListenerIsAddedOrNotAndAlwaysRemoved) {
  int told = 0;
  ListenerToken token;
  const auto tell = [&] {
    told = 0;
    context.RegisterService<Counter>(std::make_shared<Counter>()).Unregister();
    return told;
  };
  const ServiceListener listener = [&](const ServiceEvent&) { ++told; };
  failEachWithoutLeak([&] { token = context.AddServiceListener(listener, "(objectclass=*)"); },
                      [&](bool hasThrown) {
                        ASSERT_EQ(tell(), hasThrown ? 0 : 2);
                        context.RemoveListener(std::move(token));
                      });
  // With another listener, so that the list of the rest must be allocated.
  int kept = 0;
  context.AddServiceListener([&](const ServiceEvent&) { ++kept; });
  token = context.AddServiceListener(listener);
  failEach([&] { context.RemoveListener(std::move(token)); },
           [&](bool hasThrown) {
             ASSERT_FALSE(hasThrown);
             kept = 0;
             ASSERT_EQ(tell(), 0);
             ASSERT_EQ(kept, 2);
             token = context.AddServiceListener(listener);
             ASSERT_EQ(tell(), 2);
           });
}

TEST_F(FrameworkFaults, TrackerIsOpenedOrNotAndCloses) {
  auto first = context.RegisterService<Greeter>(std::make_shared<Hello>());
  auto second = context.RegisterService<Greeter>(std::make_shared<Hello>());
  ServiceTracker<Greeter> tracker(context);
  failEachWithoutLeak([&] { tracker.Open(); },
                      [&](bool hasThrown) {
                        ASSERT_EQ(tracker.Size(), hasThrown ? 0 : 2);
                        ASSERT_EQ(tracker.GetTrackingCount() < 0, hasThrown);
                        tracker.Close();
                        ASSERT_TRUE(first.GetReference().GetUsingBundles().empty());
                      });
  tracker.Open();
  failEach([&] { tracker.Close(); },
           [&](bool /*hasThrown*/) {
             ASSERT_EQ(tracker.Size(), 0);
             ASSERT_TRUE(first.GetReference().GetUsingBundles().empty());
             ASSERT_TRUE(second.GetReference().GetUsingBundles().empty());
             tracker.Open();
           });
}

}  // namespace
}  // namespace embedded_framework

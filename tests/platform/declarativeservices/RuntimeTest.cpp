#include <gmock/gmock.h>
#include <malloc.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <cppmicroservices/ServiceEvent.h>

#include "framework/FrameworkFixture.hpp"
#include "platform/declarativeservices/MadeBundles.hpp"
#include "support/testCycles.hpp"

using cppmicroservices::Bundle;
using cppmicroservices::BundleContext;
using cppmicroservices::Framework;
using cppmicroservices::FrameworkFactory;
using cppmicroservices::ServiceEvent;
using cppmicroservices::ServiceRegistration;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

// Runs an action of the test while a component is being constructed or destroyed.
class Hook : public NoteBook {
 public:
  void note(const std::string& entry) override {
    NoteBook::note(entry);
    if (entry == when) action();
  }

  std::string when;
  std::function<void()> action;
};

class Runtime : public FrameworkFixture {
 protected:
  void SetUp() override {
    FrameworkFixture::SetUp();
    parts = install("parts");
  }

  void startBoth() {
    runtime = startRuntime();
    parts.Start();
    registerHook();
  }

  void registerHook() { registration = context.RegisterService<demo::Ledger>(hook); }

  template <class Interface>
  std::shared_ptr<Interface> get() {
    return context.GetService(context.GetServiceReference<Interface>());
  }

  void onService(ServiceEvent::Type type, const std::string& filter, std::function<void()> action) {
    context.AddServiceListener(
        [type, action = std::move(action)](const ServiceEvent& event) {
          if (event.GetType() == type) action();
        },
        filter);
  }

  Bundle runtime;
  Bundle parts;
  std::shared_ptr<Hook> hook = std::make_shared<Hook>();
  ServiceRegistration<demo::Ledger> registration;
};

TEST_F(Runtime, ConstructorGetsNullForItsOwnService) {
  startBoth();
  std::shared_ptr<demo::Number> inside;
  hook->when = "+pair";
  hook->action = [&] {
    auto other = parts.GetBundleContext();
    inside = other.GetService(other.GetServiceReference<demo::Number>());
  };
  EXPECT_NE(get<demo::Number>(), nullptr);
  EXPECT_EQ(inside, nullptr);
  EXPECT_THAT(takeProblems(),
              ElementsAre(HasSubstr("component demo::Pair: its constructor asks for its own "
                                    "service; pass the service on later")));
}

TEST_F(Runtime, ImplementationIsDestroyedBeforeItsInstance) {
  startBoth();
  EXPECT_NE(get<demo::RightB>(), nullptr);
  parts.Stop();
  EXPECT_THAT(hook->take(), ElementsAre("+ordered", "-ordered", "instance removed"));
}

TEST_F(Runtime, ObjectIsDroppedWhenItsReferenceGoesAwayMeanwhile) {
  startBoth();
  hook->when = "+pair";
  hook->action = [this] { registration.Unregister(); };
  EXPECT_EQ(get<demo::Number>(), nullptr);
  EXPECT_THAT(hook->take(), ElementsAre("+pair", "-pair"));
  // It happens to anybody who gets a service while it goes.
  EXPECT_THAT(takeProblems(), IsEmpty());
}

TEST_F(Runtime, DependentIsNotCreatedWithoutItsService) {
  startBoth();
  hook->when = "+first";
  hook->action = [this] { registration.Unregister(); };
  EXPECT_EQ(get<demo::Second>(), nullptr);
  EXPECT_THAT(hook->take(), ElementsAre("+first", "-first"));
}

TEST_F(Runtime, OtherThreadsWaitForTheOneThatCreatesTheObject) {
  startBoth();
  std::atomic<bool> making = false;
  hook->when = "+pair";
  hook->action = [&] {
    making = true;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  };
  std::shared_ptr<demo::Number> first;
  std::thread maker([&] { first = get<demo::Number>(); });
  while (!making) std::this_thread::yield();
  auto other = parts.GetBundleContext();
  const auto second = other.GetService(other.GetServiceReference<demo::Number>());
  maker.join();
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(first.get(), second.get());
  EXPECT_THAT(hook->take(), ElementsAre("+pair"));
}

TEST_F(Runtime, BundleMayStopWhileItsServiceIsBeingRegistered) {
  runtime = startRuntime();
  parts.Start();
  onService(ServiceEvent::SERVICE_REGISTERED, "(objectclass=demo::Number)",
            [this] { parts.Stop(); });
  registerHook();
  EXPECT_FALSE(context.GetServiceReference<demo::Number>());
  EXPECT_FALSE(context.GetServiceReference<demo::Word>());
  EXPECT_EQ(parts.GetState(), Bundle::STATE_RESOLVED);
}

TEST_F(Runtime, ServiceUnregisteredWhileComponentsStartIsNotBound) {
  registerHook();
  runtime = startRuntime();
  onService(ServiceEvent::SERVICE_REGISTERED, "(kind=plain)",
            [this] { registration.Unregister(); });
  parts.Start();
  EXPECT_TRUE(context.GetServiceReference<demo::Word>());
  EXPECT_FALSE(context.GetServiceReference<demo::Number>());
}

TEST_F(Runtime, ServiceUnregisteredBeforeTheRuntimeIsToldOfItIsNotBound) {
  Bundle provider;
  // Comes before the runtime, which is told that the service goes and then that it came.
  onService(ServiceEvent::SERVICE_REGISTERED, "(objectclass=svc.provided)",
            [&provider] { provider.Stop(); });
  runtime = startRuntime();
  auto bundles = installMade(context, "early",
                             {{{"demo::Fine", {"svc.provided"}, {"svc.cue"}}},
                              {{"demo::Fine", {"svc.built"}, {"svc.provided"}}}});
  provider = bundles.at(0);
  for (Bundle& bundle : bundles) bundle.Start();
  const auto cue = registerNamed(context, "svc.cue");
  EXPECT_EQ(provider.GetState(), Bundle::STATE_RESOLVED);
  EXPECT_FALSE(context.GetServiceReference("svc.built"));
  EXPECT_THAT(takeProblems(), IsEmpty());
}

// The README states this limit. Fewer with sanitizers, which need more stack per level.
TEST_F(Runtime, OneServiceMayMakeAChainOfAThousandComponentsReady) {
  constexpr std::size_t kLevels = CYCLES / 10;
  runtime = startRuntime();
  std::vector<std::vector<MadeComponent>> chain;
  for (std::size_t level = 0; level < kLevels; ++level) {
    chain.push_back({{"demo::Fine",
                      {"svc.level" + std::to_string(level)},
                      {"svc.level" + std::to_string(level + 1)}}});
  }
  for (Bundle& bundle : installMade(context, "chain", chain)) bundle.Start();
  auto cue = registerNamed(context, "svc.level" + std::to_string(kLevels));
  EXPECT_TRUE(context.GetServiceReference("svc.level0"));
  cue.Unregister();
  EXPECT_FALSE(context.GetServiceReference("svc.level0"));
}

TEST_F(Runtime, FrameworkWithComponentsStopsWithItsLastHandle) {
  BundleContext kept;
  {
    Framework other = FrameworkFactory().NewFramework();
    other.Start();
    kept = other.GetBundleContext();
    kept.InstallBundles(SCR_BUNDLE).at(0).Start();
    kept.InstallBundles(pathOf("parts")).at(0).Start();
    ASSERT_TRUE(kept.GetServiceReference<demo::Word>());
  }
  EXPECT_FALSE(kept);
}

TEST_F(Runtime, ComponentWorksAfterAListenerThrew) {
  startBoth();
  onService(ServiceEvent::SERVICE_UNREGISTERING, "(objectclass=demo::First)",
            [] { throw std::runtime_error("listener is broken"); });
  registration.Unregister();
  EXPECT_THAT(takeProblems(), testing::SizeIs(1));
  registerHook();
  EXPECT_EQ(get<demo::Third>()->path(), "123");
}

TEST_F(Runtime, ThreadsMayChangeServicesAndBundlesConcurrently) {
  runtime = startRuntime();
  constexpr int kRounds = 300;
  std::thread services([this] {
    for (int round = 0; round < kRounds; ++round) {
      const auto book = std::make_shared<NoteBook>();
      context.RegisterService<demo::Ledger>(book).Unregister();
    }
  });
  std::thread starts([this] {
    for (int round = 0; round < kRounds / 10; ++round) {
      parts.Start();
      parts.Stop();
    }
  });
  for (int round = 0; round < kRounds; ++round) {
    for (const auto& third : context.GetServiceReferences<demo::Third>()) {
      try {
        context.GetService(third);
      } catch (const std::invalid_argument&) {
        // It was unregistered after the lookup.
      }
    }
  }
  services.join();
  starts.join();
  registerHook();
  parts.Start();
  EXPECT_EQ(get<demo::Third>()->path(), "123");
}

TEST_F(Runtime, RepeatedRegistrationLeaksNothing) {
  startBoth();
  registration.Unregister();
  const int cycles = quenlith::test::testCycles(CYCLES);
  std::size_t early = 0;
  for (int round = 0; round < cycles; ++round) {
    if (round == cycles / 10) early = mallinfo2().uordblks;
    registerHook();
    ASSERT_EQ(get<demo::Third>()->path(), "123");
    registration.Unregister();
    ASSERT_EQ(hook->take().size(), 6U);
  }
  EXPECT_LT(mallinfo2().uordblks, early + 64 * 1024);
}

}  // namespace

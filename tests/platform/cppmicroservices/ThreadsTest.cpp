#include <cppmicroservices/BundleEvent.h>
#include <cppmicroservices/ServiceEvent.h>
#include <cppmicroservices/ServiceFactory.h>

#include <atomic>
#include <functional>
#include <future>
#include <stdexcept>
#include <thread>
#include <utility>

#include "platform/cppmicroservices/HostFramework.hpp"
#include "platform/cppmicroservices/Script.hpp"

namespace embedded_framework {
namespace {

using namespace cppmicroservices;

/// A factory that waits inside `GetService` until the test sets `leave`.
class SlowWorkshop : public ServiceFactory {
 public:
  InterfaceMapConstPtr GetService(const Bundle&, const ServiceRegistrationBase&) override {
    ++made;
    entered.set_value();
    leave.get_future().wait();
    if (fails) throw std::runtime_error("no");
    return MakeInterfaceMap<Greeter>(std::make_shared<Hello>());
  }
  void UngetService(const Bundle&, const ServiceRegistrationBase&,
                    const InterfaceMapConstPtr&) override {
    ++returned;
  }

  std::promise<void> entered;
  std::promise<void> leave;
  std::atomic<bool> fails = false;
  std::atomic<int> made = 0;
  std::atomic<int> returned = 0;
};

class Threads : public HostFramework {
 protected:
  Threads()
      : workshop(std::make_shared<SlowWorkshop>()),
        registration(context.RegisterService<Greeter>(ToFactory(workshop))) {}

  std::future<std::shared_ptr<Greeter>> getInAnotherThread(BundleContext user) {
    return std::async(std::launch::async, [user, reference = registration.GetReference()] {
      return BundleContext(user).GetService(reference);
    });
  }

  std::shared_ptr<SlowWorkshop> workshop;
  ServiceRegistration<Greeter> registration;
};

TEST_F(Threads, OneBundleIsServedByOneCallOfTheFactory) {
  auto first = getInAnotherThread(context);
  workshop->entered.get_future().wait();
  auto second = getInAnotherThread(context);
  EXPECT_EQ(second.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
  workshop->leave.set_value();
  EXPECT_EQ(first.get(), second.get());
  EXPECT_EQ(workshop->made, 1);
}

TEST_F(Threads, ServiceUnregisteredWhileItIsCreatedIsReturned) {
  auto object = getInAnotherThread(context);
  workshop->entered.get_future().wait();
  registration.Unregister();
  workshop->leave.set_value();
  EXPECT_EQ(object.get(), nullptr);
  EXPECT_EQ(workshop->returned, 1);
}

TEST_F(Threads, ServiceUnregisteredWhileItsCreationFailsIsNotReturned) {
  workshop->fails = true;
  auto object = getInAnotherThread(context);
  workshop->entered.get_future().wait();
  registration.Unregister();
  workshop->leave.set_value();
  EXPECT_EQ(object.get(), nullptr);
  EXPECT_EQ(workshop->returned, 0);
}

TEST_F(Threads, WaitingThreadGetsNullForAnUnregisteredService) {
  auto first = getInAnotherThread(context);
  workshop->entered.get_future().wait();
  auto second = getInAnotherThread(context);
  EXPECT_EQ(second.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
  registration.Unregister();
  workshop->leave.set_value();
  EXPECT_EQ(first.get(), nullptr);
  EXPECT_EQ(second.get(), nullptr);
}

TEST_F(Threads, BundleThatStopsWhileItsServiceIsCreatedGetsNull) {
  const auto script = std::make_shared<Script>();
  auto scripts = context.RegisterService<Script>(script);
  Bundle bundle = context.InstallBundles(SCRIPTED_BUNDLE).at(0);
  bundle.Start();
  auto object = getInAnotherThread(bundle.GetBundleContext());
  workshop->entered.get_future().wait();
  bundle.Stop();
  workshop->leave.set_value();
  EXPECT_EQ(object.get(), nullptr);
  EXPECT_EQ(workshop->returned, 1);
}

/// A factory that waits inside `UngetService` until the test sets `leave`.
class SlowReturns : public ServiceFactory {
 public:
  InterfaceMapConstPtr GetService(const Bundle&, const ServiceRegistrationBase&) override {
    ++made;
    if (isReturning) ++overlaps;
    return MakeInterfaceMap<Greeter>(std::make_shared<Hello>());
  }
  void UngetService(const Bundle&, const ServiceRegistrationBase&,
                    const InterfaceMapConstPtr&) override {
    if (hasReturned.exchange(true)) return;
    isReturning = true;
    onReturn();
    entered.set_value();
    leave.get_future().wait();
    isReturning = false;
  }

  std::promise<void> entered;
  std::promise<void> leave;
  std::function<void()> onReturn = [] {};
  std::atomic<bool> hasReturned = false;
  std::atomic<bool> isReturning = false;
  std::atomic<int> overlaps = 0;
  std::atomic<int> made = 0;
};

class ReturningThreads : public HostFramework {
 protected:
  std::future<void> dropInAnotherThread(std::shared_ptr<Greeter> object) {
    return std::async(std::launch::async,
                      [object = std::move(object)]() mutable { object = nullptr; });
  }

  std::shared_ptr<SlowReturns> returns = std::make_shared<SlowReturns>();
  ServiceRegistration<Greeter> registration = context.RegisterService<Greeter>(ToFactory(returns));
  ServiceReference<Greeter> reference = registration.GetReference();
};

TEST_F(ReturningThreads, ServiceIsNotMadeWhileItIsReturned) {
  auto dropping = dropInAnotherThread(context.GetService(reference));
  returns->entered.get_future().wait();
  auto second = std::async(std::launch::async, [&] { return context.GetService(reference); });
  EXPECT_EQ(second.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
  returns->leave.set_value();
  EXPECT_NE(second.get(), nullptr);
  dropping.get();
  EXPECT_EQ(returns->overlaps, 0);
  EXPECT_EQ(returns->made, 2);
}

TEST_F(ReturningThreads, ServiceUnregisteredWhileItIsReturnedIsReturnedOnce) {
  auto dropping = dropInAnotherThread(context.GetService(reference));
  returns->entered.get_future().wait();
  auto second = std::async(std::launch::async, [&] { return context.GetService(reference); });
  EXPECT_EQ(second.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
  registration.Unregister();
  returns->leave.set_value();
  EXPECT_EQ(second.get(), nullptr);
  dropping.get();
  EXPECT_EQ(returns->made, 1);
}

TEST_F(ReturningThreads, FactoryDoesNotGetWhatItIsReturning) {
  returns->onReturn = [this] { EXPECT_EQ(context.GetService(reference), nullptr); };
  returns->leave.set_value();
  EXPECT_NE(context.GetService(reference), nullptr);
  EXPECT_EQ(returns->made, 1);
  EXPECT_EQ(errors, std::vector<std::string>{"a service factory asked for its own service"});
  EXPECT_TRUE(reference.GetUsingBundles().empty());
}

TEST_F(Threads, CallOfAnEarlierStartDoesNotActInTheNext) {
  auto scripts = context.RegisterService<Script>(std::make_shared<Script>());
  Bundle bundle = context.InstallBundles(SCRIPTED_BUNDLE).at(0);
  bundle.Start();
  const BundleContext earlier = bundle.GetBundleContext();
  auto first = getInAnotherThread(earlier);
  workshop->entered.get_future().wait();
  auto second = getInAnotherThread(earlier);
  EXPECT_EQ(second.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
  bundle.Stop();
  bundle.Start();
  workshop->leave.set_value();
  EXPECT_EQ(first.get(), nullptr);
  EXPECT_THROW(second.get(), std::runtime_error);
  EXPECT_EQ(workshop->made, 1);
  bundle.Stop();
}

TEST_F(HostFramework, ListenerIsRemovedWhileAnotherThreadIsInIt) {
  std::promise<void> entered;
  std::promise<void> leave;
  std::atomic<int> calls = 0;
  ListenerToken token = context.AddServiceListener([&](const ServiceEvent&) {
    if (++calls > 1) return;
    entered.set_value();
    leave.get_future().wait();
  });
  auto registering = std::async(std::launch::async, [this] {
    return context.RegisterService<Greeter>(std::make_shared<Hello>());
  });
  entered.get_future().wait();
  context.RemoveListener(std::move(token));
  auto other = context.RegisterService<Greeter>(std::make_shared<Hello>());
  leave.set_value();
  registering.get();
  EXPECT_EQ(calls, 1);
}

TEST_F(HostFramework, RegistryIsUsedFromSeveralThreadsAtOnce) {
  const auto script = std::make_shared<Script>();
  script->start = [](BundleContext own) {
    (void)own.RegisterService<Counter>(std::make_shared<Counter>());
    own.AddServiceListener([](const ServiceEvent&) {}, "(number>=1)");
  };
  auto scripts = context.RegisterService<Script>(script);
  Bundle bundle = context.InstallBundles(SCRIPTED_BUNDLE).at(0);
  constexpr int kRounds = 300;
  const auto registerAndFind = [this](int number) {
    for (int round = 0; round < kRounds; ++round) {
      auto registration =
          context.RegisterService<Greeter>(std::make_shared<Hello>(), {{"number", Any(number)}});
      registration.SetProperties({{"number", Any(number)}, {"service.ranking", Any(round % 3)}});
      const std::string own = "(number=" + std::to_string(number) + ")";
      EXPECT_EQ(context.GetServiceReferences<Greeter>(own).size(), 1U);
      for (const auto& reference : context.GetServiceReferences<Greeter>()) {
        // Another thread may unregister it between the two calls.
        try {
          const auto object = context.GetService(reference);
          EXPECT_EQ(object ? object->greet() : "hello", "hello");
        } catch (const std::invalid_argument&) {
        }
      }
      context.GetServiceReferences<Counter>();
      registration.Unregister();
    }
  };
  const auto startAndStop = [&bundle] {
    for (int round = 0; round < kRounds; ++round) {
      bundle.Start();
      bundle.Stop();
    }
  };
  std::vector<std::thread> threads;
  threads.emplace_back(startAndStop);
  for (int number = 1; number <= 3; ++number) threads.emplace_back(registerAndFind, number);
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(errors.empty());
  EXPECT_FALSE(context.GetServiceReference<Greeter>());
  EXPECT_FALSE(context.GetServiceReference<Counter>());
}

TEST_F(HostFramework, LibraryHasAContextWhileItsBundleRunsInOneFramework) {
  const auto script = std::make_shared<Script>();
  const auto own = context.RegisterService<Script>(script);
  context.InstallBundles(SCRIPTED_BUNDLE).at(0).Start();
  Framework other = FrameworkFactory().NewFramework();
  other.Start();
  const auto others = other.GetBundleContext().RegisterService<Script>(script);
  Bundle second = other.GetBundleContext().InstallBundles(SCRIPTED_BUNDLE).at(0);
  std::atomic<bool> isOver = false;
  auto user = std::async(std::launch::async, [&isOver, contextOf = script->contextOfBundle] {
    // One that the bundle had may become invalid meanwhile.
    long withoutContext = 0;
    while (!isOver) withoutContext += contextOf() == BundleContext() ? 1 : 0;
    return withoutContext;
  });
  for (int round = 0; round < 500; ++round) {
    second.Start();
    second.Stop();
  }
  isOver = true;
  EXPECT_EQ(user.get(), 0);
}

TEST_F(HostFramework, LibraryInstalledByTwoThreadsIsInstalledOnce) {
  const auto install = [this] { return context.InstallBundles(SCRIPTED_BUNDLE); };
  for (int round = 0; round < 50; ++round) {
    auto first = std::async(std::launch::async, install);
    auto second = std::async(std::launch::async, install);
    const std::vector<Bundle> bundles = first.get();
    EXPECT_EQ(bundles, second.get());
    EXPECT_EQ(context.GetBundles().size(), 2U);
    Bundle(bundles.at(0)).Uninstall();
  }
}

}  // namespace
}  // namespace embedded_framework

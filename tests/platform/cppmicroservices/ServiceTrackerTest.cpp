#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <cppmicroservices/Constants.h>
#include <cppmicroservices/LDAPFilter.h>
#include <cppmicroservices/ServiceEvent.h>
#include <cppmicroservices/ServiceTracker.h>

#include "platform/cppmicroservices/HostFramework.hpp"
#include "platform/cppmicroservices/Script.hpp"

namespace embedded_framework {
namespace {

using namespace cppmicroservices;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::ThrowsMessage;

/// Makes an object for every service, also for one that is gone, and runs the actions of a test.
class Customizer : public ServiceTrackerCustomizer<Greeter, std::string> {
 public:
  std::shared_ptr<std::string> AddingService(const ServiceReference<Greeter>& service) override {
    adding(service);
    return std::make_shared<std::string>("object");
  }
  void ModifiedService(const ServiceReference<Greeter>& /*service*/,
                       const std::shared_ptr<std::string>& /*object*/) override {}
  void RemovedService(const ServiceReference<Greeter>& /*service*/,
                      const std::shared_ptr<std::string>& /*object*/) override {
    removed();
  }

  std::function<void(const ServiceReference<Greeter>&)> adding = [](const auto&) {};
  std::function<void()> removed = [] {};
};

class TrackedByACustomizer : public HostFramework {
 protected:
  ServiceRegistration<Greeter> add(const ServiceProperties& properties = {}) {
    return context.RegisterService<Greeter>(std::make_shared<Hello>(), properties);
  }

  Customizer customizer;
  ServiceTracker<Greeter, std::string> tracker{context, &customizer};
};

TEST_F(TrackedByACustomizer, ServiceUnregisteredWhileTheTrackerIsOpenedIsNotTracked) {
  auto first = add();
  auto second = add();
  // By then the tracker has found both.
  customizer.adding = [&](const ServiceReference<Greeter>& service) {
    if (service == first.GetReference()) second.Unregister();
  };
  tracker.Open();
  EXPECT_EQ(tracker.Size(), 1);
  first.Unregister();
  EXPECT_EQ(tracker.Size(), 0);
}

TEST_F(TrackedByACustomizer, ServiceChangedWhileTheTrackerIsOpenedIsNotTracked) {
  auto first = add({{"kind", std::string("x")}});
  auto second = add({{"kind", std::string("x")}});
  ServiceTracker<Greeter, std::string> filtered(context, LDAPFilter("(kind=x)"), &customizer);
  customizer.adding = [&](const ServiceReference<Greeter>& service) {
    if (service == first.GetReference()) second.SetProperties({});
  };
  filtered.Open();
  EXPECT_EQ(filtered.Size(), 1);
  second.Unregister();
  EXPECT_EQ(filtered.Size(), 1);
}

TEST_F(TrackedByACustomizer, ServiceModifiedWhileTheTrackerIsOpenedIsAddedOnce) {
  const auto first = add();
  auto second = add();
  int additions = 0;
  // The tracker is told of the second one before it adds what it has found.
  customizer.adding = [&](const ServiceReference<Greeter>& service) {
    ++additions;
    if (service == first.GetReference()) second.SetProperties({{"a", 1}});
  };
  tracker.Open();
  EXPECT_EQ(additions, 2);
  EXPECT_EQ(tracker.GetTrackingCount(), 2);
}

TEST_F(TrackedByACustomizer, ServiceUnregisteredInAnEarlierListenerIsNotTracked) {
  auto service = add();
  bool isUnregistering = false;
  // Comes before the tracker, which is told that the service goes and then that it has changed.
  context.AddServiceListener([&](const ServiceEvent& event) {
    if (isUnregistering && event.GetType() == ServiceEvent::SERVICE_MODIFIED) service.Unregister();
  });
  tracker.Open();
  isUnregistering = true;
  service.SetProperties({{"a", 1}});
  EXPECT_EQ(tracker.Size(), 0);
}

TEST_F(TrackedByACustomizer, ServiceUnregisteredByTheCustomizerThatAddsItIsNotTracked) {
  auto service = add();
  int removals = 0;
  customizer.adding = [&](const auto&) { service.Unregister(); };
  customizer.removed = [&] { ++removals; };
  tracker.Open();
  EXPECT_EQ(tracker.Size(), 0);
  // The customizer has made an object for it.
  EXPECT_EQ(removals, 1);
}

TEST_F(TrackedByACustomizer, NothingIsAddedAfterTheCustomizerHasClosedTheTracker) {
  const auto first = add();
  const auto second = add();
  int additions = 0;
  int removals = 0;
  customizer.adding = [&](const auto&) {
    ++additions;
    tracker.Close();
  };
  customizer.removed = [&] { ++removals; };
  tracker.Open();
  EXPECT_EQ(tracker.GetTrackingCount(), -1);
  EXPECT_EQ(additions, 1);
  EXPECT_EQ(removals, 1);
}

TEST_F(TrackedByACustomizer, CustomizerMayCloseAnotherTracker) {
  ServiceTracker<Greeter> other(context);
  other.Open();
  customizer.adding = [&](const auto&) { other.Close(); };
  tracker.Open();
  const auto service = add();
  EXPECT_EQ(other.GetTrackingCount(), -1);
  EXPECT_EQ(tracker.Size(), 1);
}

TEST_F(TrackedByACustomizer, CloseThrowsTheFirstExceptionAfterEveryServiceIsRemoved) {
  const auto first = add();
  const auto second = add();
  tracker.Open();
  int removals = 0;
  customizer.removed = [&] { throw std::runtime_error(std::to_string(++removals)); };
  EXPECT_THAT([this] { tracker.Close(); }, ThrowsMessage<std::runtime_error>("1"));
  EXPECT_EQ(removals, 2);
  EXPECT_EQ(tracker.GetTrackingCount(), -1);
}

TEST_F(TrackedByACustomizer, DestructorRemovesEveryServiceAndThrowsNothing) {
  const auto first = add();
  const auto second = add();
  int removals = 0;
  customizer.removed = [&] {
    ++removals;
    throw std::runtime_error("no");
  };
  {
    ServiceTracker<Greeter, std::string> destroyed(context, &customizer);
    destroyed.Open();
  }
  EXPECT_EQ(removals, 2);
}

TEST_F(TrackedByACustomizer, TrackerOfAStoppedBundleCloses) {
  const auto script = context.RegisterService<Script>(std::make_shared<Script>());
  Bundle bundle = context.InstallBundles(SCRIPTED_BUNDLE).at(0);
  bundle.Start();
  ServiceTracker<Greeter, std::string> left(bundle.GetBundleContext(), &customizer);
  const auto service = add();
  left.Open();
  bundle.Stop();
  int removals = 0;
  customizer.removed = [&] { ++removals; };
  left.Close();
  EXPECT_EQ(removals, 1);
  EXPECT_EQ(left.GetTrackingCount(), -1);
}

TEST_F(TrackedByACustomizer, ClosedTrackerHasNothing) {
  const auto service = add();
  tracker.Open();
  tracker.Close();
  EXPECT_THAT(tracker.GetServiceReferences(), IsEmpty());
  EXPECT_THAT(tracker.GetServices(), IsEmpty());
  EXPECT_EQ(tracker.WaitForService(), nullptr);
  tracker.Remove(service.GetReference());
  EXPECT_EQ(tracker.GetTrackingCount(), -1);
}

TEST_F(TrackedByACustomizer, WaitEndsWithTheContext) {
  tracker.Open();
  auto waiting = std::async(std::launch::async,
                            [this] { return tracker.WaitForService(std::chrono::seconds(60)); });
  EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
  stop();
  EXPECT_THROW(waiting.get(), std::logic_error);
  EXPECT_THROW(tracker.WaitForService(std::chrono::milliseconds(1)), std::logic_error);
}

TEST_F(TrackedByACustomizer, EveryCloseWaitsForTheCustomizer) {
  std::promise<void> entered;
  std::promise<void> leave;
  std::atomic<bool> isFirst = true;
  customizer.adding = [&](const auto&) {
    if (!isFirst.exchange(false)) return;
    entered.set_value();
    leave.get_future().wait();
  };
  tracker.Open();
  auto adding = std::async(std::launch::async, [this] { return add(); });
  entered.get_future().wait();
  auto first = std::async(std::launch::async, [this] { tracker.Close(); });
  while (tracker.GetTrackingCount() != -1) std::this_thread::yield();
  auto second = std::async(std::launch::async, [this] { tracker.Close(); });
  constexpr std::chrono::milliseconds kWhile{50};
  EXPECT_EQ(second.wait_for(kWhile), std::future_status::timeout);
  // A later session does not hide the one that is being closed.
  tracker.Open();
  auto third = std::async(std::launch::async, [this] { tracker.Close(); });
  EXPECT_EQ(third.wait_for(kWhile), std::future_status::timeout);
  EXPECT_EQ(first.wait_for(kWhile), std::future_status::timeout);
  leave.set_value();
}

TEST_F(TrackedByACustomizer, CloseInTheCustomizerDoesNotWaitForACloseThatWaitsForIt) {
  std::promise<void> entered;
  std::promise<void> leave;
  customizer.adding = [&](const auto&) {
    entered.set_value();
    leave.get_future().wait();
    tracker.Close();
  };
  customizer.removed = [this] { tracker.Close(); };
  tracker.Open();
  auto adding = std::async(std::launch::async, [this] { return add(); });
  entered.get_future().wait();
  auto closing = std::async(std::launch::async, [this] { tracker.Close(); });
  while (tracker.GetTrackingCount() != -1) std::this_thread::yield();
  leave.set_value();
  closing.get();
  EXPECT_EQ(tracker.Size(), 0);
}

/// A tracker whose way of getting a service can be called.
class OwnTracker : public ServiceTracker<Greeter> {
 public:
  using ServiceTracker::AddingService;
  using ServiceTracker::ServiceTracker;
};

TEST_F(HostFramework, TrackerIgnoresAnUnregisteredServiceAndRefusesAnInvalidReference) {
  OwnTracker tracker(context);
  auto service = context.RegisterService<Greeter>(std::make_shared<Hello>());
  const ServiceReference<Greeter> reference = service.GetReference();
  EXPECT_NE(tracker.AddingService(reference), nullptr);
  service.Unregister();
  EXPECT_EQ(tracker.AddingService(reference), nullptr);
  EXPECT_THROW(tracker.AddingService(ServiceReference<Greeter>()), std::invalid_argument);
}

TEST_F(HostFramework, IdentifierOfATrackerMayBeginWithTheGlobalScope) {
  ServiceTracker<Greeter> tracker(context, "::embedded_framework::Greeter");
  const auto earlier = context.RegisterService<Greeter>(std::make_shared<Hello>());
  tracker.Open();
  EXPECT_EQ(tracker.Size(), 1);
  const auto later = context.RegisterService<Greeter>(std::make_shared<Hello>());
  EXPECT_EQ(tracker.Size(), 2);
}

TEST_F(HostFramework, SpecialCharactersOfAnIdentifierAreOrdinary) {
  const std::string identifier = R"(Box<char*, int (*)(int)>\)";
  const auto registerUnder = [this](const std::string& name) {
    const auto service = std::make_shared<InterfaceMap>();
    service->emplace(name, std::make_shared<int>(1));
    return context.RegisterService(service);
  };
  ServiceTracker<void> tracker(context, identifier);
  tracker.Open();
  const auto other = registerUnder(R"(Box<charge*, int (*)(int)>\)");
  EXPECT_EQ(tracker.Size(), 0);
  const auto own = registerUnder(identifier);
  EXPECT_EQ(tracker.Size(), 1);
}

TEST_F(HostFramework, ReferencesAreInOrderWhileARankingChanges) {
  constexpr std::size_t kServices = 100;
  std::vector<ServiceRegistration<Greeter>> services;
  while (services.size() < kServices) {
    services.push_back(context.RegisterService<Greeter>(std::make_shared<Hello>()));
  }
  ServiceTracker<Greeter> tracker(context);
  tracker.Open();
  for (std::size_t number = 0; number < kServices; number += 4) {
    auto& changing = services[number];
    std::atomic<bool> isOver = false;
    std::thread changer([&] {
      while (!isOver) {
        changing.SetProperties({{Constants::SERVICE_RANKING, 1}});
        changing.SetProperties({});
      }
    });
    bool isInOrder = true;
    for (int round = 0; round < 150; ++round) {
      auto references = tracker.GetServiceReferences();
      std::erase(references, changing.GetReference());
      isInOrder = isInOrder && references.size() == kServices - 1 &&
                  std::is_sorted(references.begin(), references.end());
    }
    isOver = true;
    changer.join();
    ASSERT_TRUE(isInOrder);
  }
}

}  // namespace
}  // namespace embedded_framework

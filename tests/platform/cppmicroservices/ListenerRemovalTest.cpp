#include <cppmicroservices/ServiceEvent.h>

#include <memory>

#include "platform/cppmicroservices/HostFramework.hpp"
#include "platform/cppmicroservices/Script.hpp"

// The functions under test are deprecated, but authors of bundles still use them.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace embedded_framework {
namespace {

using namespace cppmicroservices;

/// Counts the events that its two functions are told of.
struct Counters {
  void countFirst(const ServiceEvent& /*event*/) { ++first; }
  void countSecond(const ServiceEvent& /*event*/) { ++second; }

  int first = 0;
  int second = 0;
};

class ListenerRemoval : public HostFramework {
 protected:
  // Sends one event when the service comes and one when it goes.
  void sendTwoEvents() { context.RegisterService<Greeter>(std::make_shared<Hello>()).Unregister(); }

  // Listeners are also called when the framework stops, after the test has returned.
  const std::shared_ptr<Counters> counters = std::make_shared<Counters>();
};

TEST_F(ListenerRemoval, FunctionObjectIsFoundByItsType) {
  const auto countFirst = [counters = counters](const ServiceEvent&) { ++counters->first; };
  const auto countSecond = [counters = counters](const ServiceEvent&) { ++counters->second; };
  context.AddServiceListener(countFirst);
  context.AddServiceListener(countSecond);
  context.RemoveServiceListener(countSecond);
  sendTwoEvents();
  EXPECT_EQ(counters->first, 2);
  EXPECT_EQ(counters->second, 0);
}

TEST_F(ListenerRemoval, FirstOfSeveralFunctionObjectsOfATypeIsRemoved) {
  const auto adding = [counters = counters](int step) {
    return [counters, step](const ServiceEvent&) { counters->first += step; };
  };
  context.AddServiceListener(adding(1));
  context.AddServiceListener(adding(10));
  context.RemoveServiceListener(adding(10));
  sendTwoEvents();
  EXPECT_EQ(counters->first, 20);
}

TEST_F(ListenerRemoval, AnotherFunctionOfTheReceiverIsNotRemoved) {
  context.AddServiceListener([](const ServiceEvent&) {});
  context.AddServiceListener(counters.get(), &Counters::countFirst);
  context.AddServiceListener(counters.get(), &Counters::countSecond);
  context.RemoveServiceListener(counters.get(), &Counters::countSecond);
  sendTwoEvents();
  EXPECT_EQ(counters->first, 2);
  EXPECT_EQ(counters->second, 0);
  context.RemoveServiceListener(counters.get(), &Counters::countFirst);
}

TEST_F(ListenerRemoval, ListenerOfAnotherBundleIsNotRemoved) {
  const auto script = context.RegisterService<Script>(std::make_shared<Script>());
  Bundle bundle = context.InstallBundles(SCRIPTED_BUNDLE).at(0);
  bundle.Start();
  const auto count = [counters = counters](const ServiceEvent&) { ++counters->first; };
  bundle.GetBundleContext().AddServiceListener(count);
  context.RemoveServiceListener(count);
  sendTwoEvents();
  EXPECT_EQ(counters->first, 2);
  bundle.GetBundleContext().RemoveServiceListener(count);
  sendTwoEvents();
  EXPECT_EQ(counters->first, 2);
}

}  // namespace
}  // namespace embedded_framework

#pragma GCC diagnostic pop

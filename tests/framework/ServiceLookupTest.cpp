#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <cppmicroservices/LDAPFilter.h>
#include <cppmicroservices/ServiceEvent.h>

#include "FrameworkFixture.hpp"

using cppmicroservices::LDAPFilter;
using cppmicroservices::ServiceEvent;
using testing::ElementsAre;

namespace {

class Silence : public demo::Word {
 public:
  std::string text() const override { return ""; }
};

// Lookups while the framework notifies its listeners of a change.
class ServiceLookup : public FrameworkFixture {
 protected:
  void SetUp() override {
    FrameworkFixture::SetUp();
    // The first lookup comes before there is a service, as in a component that looks again until it
    // finds one.
    ASSERT_EQ(countWords(), 0U);
  }

  std::size_t countWords() {
    auto own = framework.GetBundleContext();
    return own.GetServiceReferences<demo::Word>(LDAPFilter().ToString()).size();
  }

  void registerWord() { (void)context.RegisterService<demo::Word>(std::make_shared<Silence>()); }

  std::vector<std::size_t> counts;
  std::vector<std::string> refusals;
};

TEST_F(ServiceLookup, ListenerFindsTheServiceOfTheEvent) {
  context.AddServiceListener([this](const ServiceEvent& event) {
    if (event.GetType() == ServiceEvent::SERVICE_REGISTERED) counts.push_back(countWords());
  });
  registerWord();
  EXPECT_THAT(counts, ElementsAre(1));
}

TEST_F(ServiceLookup, OtherThreadFindsAServiceWhileAListenerRuns) {
  context.AddServiceListener([this](const ServiceEvent& event) {
    if (event.GetType() != ServiceEvent::SERVICE_REGISTERED) return;
    counts.push_back(std::async(std::launch::async, [this] { return countWords(); }).get());
  });
  registerWord();
  EXPECT_THAT(counts, ElementsAre(1));
}

TEST_F(ServiceLookup, ThrowsAfterTheFrameworkStoppedInAListener) {
  auto old = context;
  const auto refuse = [this](auto lookUp) {
    try {
      lookUp();
      refusals.emplace_back("nothing thrown");
    } catch (const std::runtime_error& error) {
      refusals.emplace_back(error.what());
    }
  };
  context.AddServiceListener([&](const ServiceEvent& event) {
    if (event.GetType() != ServiceEvent::SERVICE_REGISTERED) return;
    framework.Stop();
    framework.WaitForStop(std::chrono::milliseconds::zero());
    refuse([&] { countWords(); });
    refuse([&] { old.GetServiceReferences<demo::Word>(); });
    refuse([&] { old.GetServiceReferences("demo::Word"); });
  });
  registerWord();
  const std::string text = "The bundle context is no longer valid";
  EXPECT_THAT(refusals, ElementsAre(text, text, text));
}

TEST_F(ServiceLookup, FindsNoServiceOfAnotherFramework) {
  auto other = cppmicroservices::FrameworkFactory().NewFramework();
  other.Start();
  (void)other.GetBundleContext().RegisterService<demo::Word>(std::make_shared<Silence>());
  EXPECT_EQ(countWords(), 0U);
  registerWord();
  other.Stop();
  other.WaitForStop(std::chrono::milliseconds::zero());
  EXPECT_EQ(countWords(), 1U);
}

}  // namespace

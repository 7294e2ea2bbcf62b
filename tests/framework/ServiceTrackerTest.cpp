#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <cppmicroservices/Constants.h>
#include <cppmicroservices/LDAPFilter.h>
#include <cppmicroservices/ServiceEvent.h>
#include <cppmicroservices/ServiceException.h>
#include <cppmicroservices/ServiceTracker.h>

#include "FrameworkFixture.hpp"

using cppmicroservices::Any;
using cppmicroservices::InterfaceMap;
using cppmicroservices::LDAPFilter;
using cppmicroservices::ServiceEvent;
using cppmicroservices::ServiceProperties;
using cppmicroservices::ServiceReference;
using cppmicroservices::ServiceRegistration;
using cppmicroservices::ServiceTracker;
using cppmicroservices::ServiceTrackerCustomizer;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace constants = cppmicroservices::Constants;

namespace {

class Spoken : public demo::Word {
 public:
  explicit Spoken(std::string words) : words(std::move(words)) {}
  std::string text() const override { return words; }

 private:
  std::string words;
};

/// Tracks the text of a word, and records what it is told.
class Recorder : public ServiceTrackerCustomizer<demo::Word, std::string> {
 public:
  explicit Recorder(cppmicroservices::BundleContext context) : context(context) {}

  std::shared_ptr<std::string> AddingService(const ServiceReference<demo::Word>& word) override {
    const std::string text = context.GetService(word)->text();
    calls.push_back("add " + text);
    if (text == "broken") throw std::runtime_error("broken word");
    return text == "ignored" ? nullptr : std::make_shared<std::string>(text);
  }
  void ModifiedService(const ServiceReference<demo::Word>& /*word*/,
                       const std::shared_ptr<std::string>& text) override {
    calls.push_back("modify " + *text);
  }
  void RemovedService(const ServiceReference<demo::Word>& /*word*/,
                      const std::shared_ptr<std::string>& text) override {
    calls.push_back("remove " + *text);
  }

  cppmicroservices::BundleContext context;
  std::vector<std::string> calls;
};

class ServiceTrackers : public FrameworkFixture {
 protected:
  ServiceRegistration<demo::Word> add(const std::string& text,
                                      const ServiceProperties& properties = {}) {
    return context.RegisterService<demo::Word>(std::make_shared<Spoken>(text), properties);
  }

  template <class Tracker>
  static std::vector<std::string> texts(const Tracker& tracker) {
    std::vector<std::string> found;
    for (const auto& word : tracker.GetServices()) found.push_back(word->text());
    return found;
  }

  /// Returns when another thread waits for a service.
  static std::future<std::shared_ptr<demo::Word>> startWaiting(
      ServiceTracker<demo::Word>& tracker) {
    auto waiting = std::async(std::launch::async, [&] { return tracker.WaitForService(); });
    // Nothing tells that the thread has begun to wait.
    EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    return waiting;
  }
};

TEST_F(ServiceTrackers, TrackWhatIsThereAndWhatComesAndGoes) {
  auto first = add("first");
  ServiceTracker<demo::Word> tracker(context);
  EXPECT_EQ(tracker.GetTrackingCount(), -1);
  EXPECT_EQ(tracker.GetService(), nullptr);
  tracker.Open();
  tracker.Open();
  EXPECT_THAT(texts(tracker), ElementsAre("first"));
  auto second = add("second");
  EXPECT_THAT(texts(tracker), UnorderedElementsAre("first", "second"));
  EXPECT_EQ(tracker.Size(), 2);
  EXPECT_FALSE(tracker.IsEmpty());
  const int before = tracker.GetTrackingCount();
  first.Unregister();
  EXPECT_THAT(texts(tracker), ElementsAre("second"));
  EXPECT_EQ(tracker.GetTrackingCount(), before + 1);
  tracker.Close();
  EXPECT_EQ(tracker.Size(), 0);
  EXPECT_TRUE(tracker.IsEmpty());
  EXPECT_EQ(tracker.GetTrackingCount(), -1);
  tracker.Open();
  EXPECT_THAT(texts(tracker), ElementsAre("second"));
}

TEST_F(ServiceTrackers, PreferTheHighestRankingThenTheLowestId) {
  ServiceTracker<demo::Word> tracker(context);
  tracker.Open();
  EXPECT_THROW((void)tracker.GetServiceReference(), cppmicroservices::ServiceException);
  auto low = add("low");
  auto high = add("high", {{constants::SERVICE_RANKING, 5}});
  auto later = add("later", {{constants::SERVICE_RANKING, 5}});
  EXPECT_EQ(tracker.GetServiceReference(), high.GetReference());
  EXPECT_EQ(tracker.GetService()->text(), "high");
  EXPECT_EQ(tracker.GetService(low.GetReference())->text(), "low");
  EXPECT_EQ(tracker.GetServiceReferences().size(), 3U);
  tracker.Remove(high.GetReference());
  EXPECT_EQ(tracker.GetService()->text(), "later");
  EXPECT_EQ(tracker.GetService(high.GetReference()), nullptr);
  ServiceTracker<demo::Word>::TrackingMap tracked;
  tracker.GetTracked(tracked);
  EXPECT_EQ(tracked.size(), 2U);
  EXPECT_EQ(tracked.at(low.GetReference())->text(), "low");
}

TEST_F(ServiceTrackers, MayTrackOneServiceAFilterOrAName) {
  auto a = add("a", {{"kind", std::string("x")}});
  auto b = add("b");
  ServiceTracker<demo::Word> one(context, b.GetReference());
  ServiceTracker<demo::Word> filtered(context, LDAPFilter("(kind=x)"));
  ServiceTracker<demo::Word> named(context, "demo::Word");
  one.Open();
  filtered.Open();
  named.Open();
  EXPECT_THAT(texts(one), ElementsAre("b"));
  EXPECT_THAT(texts(filtered), ElementsAre("a"));
  EXPECT_THAT(texts(named), UnorderedElementsAre("a", "b"));
  // A service is tracked while the filter matches it.
  a.SetProperties({});
  EXPECT_TRUE(filtered.IsEmpty());
  b.SetProperties({{"kind", std::string("x")}});
  EXPECT_THAT(texts(filtered), ElementsAre("b"));
}

TEST_F(ServiceTrackers, TellTheCustomizer) {
  Recorder recorder(context);
  ServiceTracker<demo::Word, std::string> tracker(context, &recorder);
  auto first = add("first");
  tracker.Open();
  first.SetProperties({{"a", 1}});
  auto ignored = add("ignored");
  ignored.SetProperties({{"a", 1}});
  EXPECT_EQ(*tracker.GetService(), "first");
  EXPECT_EQ(tracker.Size(), 1);
  ignored.Unregister();
  auto second = add("second");
  first.Unregister();
  tracker.Close();
  EXPECT_THAT(recorder.calls, ElementsAre("add first", "modify first", "add ignored", "add ignored",
                                          "add second", "remove first", "remove second"));
}

TEST_F(ServiceTrackers, CloseWhenTheyAreDestroyed) {
  Recorder recorder(context);
  const auto word = add("word");
  {
    ServiceTracker<demo::Word, std::string> tracker(context, &recorder);
    tracker.Open();
  }
  EXPECT_THAT(recorder.calls, ElementsAre("add word", "remove word"));
  const auto later = add("later");
  EXPECT_EQ(recorder.calls.size(), 2U);
}

TEST_F(ServiceTrackers, IgnoreAServiceThatIsGoneBeforeTheyGetIt) {
  auto word = add("word", {{"kind", std::string("y")}});
  bool isPassing = false;
  context.AddServiceListener([&](const ServiceEvent& event) {
    if (isPassing && event.GetType() == ServiceEvent::SERVICE_MODIFIED) word.Unregister();
  });
  ServiceTracker<demo::Word> tracker(context, LDAPFilter("(kind=x)"));
  tracker.Open();
  isPassing = true;
  // The tracker is told that the filter matches the service after that was unregistered.
  word.SetProperties({{"kind", std::string("x")}});
  EXPECT_TRUE(tracker.IsEmpty());
  EXPECT_THAT(takeProblems(), testing::IsEmpty());
}

TEST_F(ServiceTrackers, OfOtherObjectsNeedACustomizer) {
  const auto word = add("word");
  ServiceTracker<demo::Word, std::string> tracker(context);
  EXPECT_THROW(tracker.Open(), std::runtime_error);
}

TEST_F(ServiceTrackers, MayTrackServicesOfAnyInterface) {
  const auto word = add("word", {{"kind", std::string("x")}});
  ServiceTracker<void> tracker(context, LDAPFilter("(kind=x)"));
  tracker.Open();
  const std::shared_ptr<const InterfaceMap> service = tracker.GetService();
  ASSERT_NE(service, nullptr);
  EXPECT_EQ(service->count("demo::Word"), 1U);
}

TEST_F(ServiceTrackers, WaitForAService) {
  ServiceTracker<demo::Word> tracker(context);
  tracker.Open();
  EXPECT_EQ(tracker.WaitForService(std::chrono::milliseconds(1)), nullptr);
  EXPECT_THROW(tracker.WaitForService(std::chrono::milliseconds(-1)), std::invalid_argument);
  auto waiting = startWaiting(tracker);
  const auto word = add("word");
  EXPECT_EQ(waiting.get()->text(), "word");
  EXPECT_EQ(tracker.WaitForService(std::chrono::milliseconds::zero())->text(), "word");
}

TEST_F(ServiceTrackers, WaitUntilTheyAreClosed) {
  ServiceTracker<demo::Word> tracker(context);
  tracker.Open();
  auto waiting = startWaiting(tracker);
  tracker.Close();
  EXPECT_EQ(waiting.wait_for(std::chrono::seconds(60)), std::future_status::ready);
  // Ends a wait that the tracker did not end.
  framework.Stop();
  framework.WaitForStop(std::chrono::milliseconds::zero());
  EXPECT_EQ(waiting.get(), nullptr);
}

TEST_F(ServiceTrackers, CannotBeOpenedWithAnInvalidContext) {
  ServiceTracker<demo::Word> tracker(context);
  framework.Stop();
  framework.WaitForStop(std::chrono::milliseconds::zero());
  EXPECT_THROW(tracker.Open(), std::runtime_error);
}

TEST_F(ServiceTrackers, MayBeUsedFromSeveralThreads) {
  ServiceTracker<demo::Word> tracker(context);
  tracker.Open();
  std::atomic<bool> isOver = false;
  std::thread reader([&] {
    while (!isOver) {
      for (const auto& word : tracker.GetServices()) EXPECT_EQ(word->text(), "word");
    }
  });
  std::vector<std::thread> writers;
  for (int number = 0; number < 2; ++number) {
    writers.emplace_back([this] {
      for (int round = 0; round < 100; ++round) add("word").Unregister();
    });
  }
  for (std::thread& writer : writers) writer.join();
  isOver = true;
  reader.join();
  EXPECT_TRUE(tracker.IsEmpty());
}

}  // namespace

#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <cppmicroservices/Constants.h>
#include <cppmicroservices/ListenerFunctors.h>
#include <cppmicroservices/ServiceEvent.h>
#include <cppmicroservices/ServiceException.h>
#include <cppmicroservices/ServiceFactory.h>
#include <cppmicroservices/ServiceInterface.h>
#include <cppmicroservices/ServiceObjects.h>

#include "FrameworkFixture.hpp"

using cppmicroservices::Any;
using cppmicroservices::Bundle;
using cppmicroservices::InterfaceMap;
using cppmicroservices::InterfaceMapConstPtr;
using cppmicroservices::ServiceEvent;
using cppmicroservices::ServiceProperties;
using cppmicroservices::ServiceReference;
using cppmicroservices::ServiceReferenceU;
using cppmicroservices::ServiceRegistration;
using cppmicroservices::ServiceRegistrationBase;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace constants = cppmicroservices::Constants;

namespace {

class Text : public demo::Word {
 public:
  explicit Text(std::string value) : content(std::move(value)) {}
  std::string text() const override { return content; }

 private:
  std::string content;
};

class Both : public demo::Word, public demo::Number {
 public:
  std::string text() const override { return "both"; }
  int value() const override { return 7; }
};

}  // namespace

class Undeclared {
 public:
  virtual ~Undeclared() = default;
};

class Declared {
 public:
  virtual ~Declared() = default;
};
CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(Declared, "an.identifier/1.0")

class ServiceRegistry : public FrameworkFixture {
 protected:
  ServiceRegistration<demo::Word> add(const std::string& text,
                                      const ServiceProperties& properties = {}) {
    return context.RegisterService<demo::Word>(std::make_shared<Text>(text), properties);
  }

  std::vector<std::string> texts(const std::string& filter = "") {
    std::vector<std::string> found;
    for (const auto& word : context.GetServiceReferences<demo::Word>(filter)) {
      found.push_back(context.GetService(word)->text());
    }
    return found;
  }
};

TEST_F(ServiceRegistry, IdentifierIsTheQualifiedNameUnlessDeclared) {
  EXPECT_EQ(us_service_interface_iid<demo::Word>(), "demo::Word");
  EXPECT_EQ(us_service_interface_iid<Undeclared>(), "Undeclared");
  EXPECT_EQ(us_service_interface_iid<Declared>(), "an.identifier/1.0");
}

TEST_F(ServiceRegistry, FindsWhatWasRegistered) {
  const auto service = std::make_shared<Text>("one");
  const auto registration = context.RegisterService<demo::Word>(service);
  const auto reference = context.GetServiceReference<demo::Word>();
  ASSERT_TRUE(reference);
  EXPECT_EQ(context.GetService(reference), service);
  EXPECT_EQ(reference.GetBundle(), framework);
  EXPECT_EQ(reference, registration.GetReference());
  EXPECT_EQ(reference.GetInterfaceId(), "demo::Word");
}

TEST_F(ServiceRegistry, IdentifierMayBeginWithTheGlobalScope) {
  auto word = add("found");
  const ServiceReference<demo::Word> found = context.GetServiceReference("::demo::Word");
  EXPECT_EQ(found, word.GetReference());
  EXPECT_THAT(context.GetServiceReferences("::demo::Word", "(objectclass=demo::Word)"), SizeIs(1));
  EXPECT_FALSE(context.GetServiceReference("::demo::Numbe"));
  const ServiceRegistrationBase& base = word;
  EXPECT_TRUE(base.GetReference("::demo::Word"));

  const InterfaceMapConstPtr service = std::make_shared<const InterfaceMap>(
      InterfaceMap{{"::spelled::Out", std::make_shared<Text>("out")}});
  const auto spelledOut = context.RegisterService(service);
  EXPECT_TRUE(context.GetServiceReference("spelled::Out"));
  EXPECT_TRUE(context.GetServiceReference("::spelled::Out"));
}

TEST_F(ServiceRegistry, FindsNothingWithoutRegistrations) {
  EXPECT_FALSE(context.GetServiceReference<demo::Word>());
  EXPECT_THAT(context.GetServiceReferences<demo::Word>(), IsEmpty());
  EXPECT_FALSE(context.GetServiceReference("demo::Word"));
}

TEST_F(ServiceRegistry, SetsItsOwnProperties) {
  const auto registration = add("one", {{"kind", 1}});
  const auto reference = registration.GetReference();
  EXPECT_GT(cppmicroservices::any_cast<long>(reference.GetProperty(constants::SERVICE_ID)), 0);
  EXPECT_EQ(reference.GetProperty(constants::OBJECTCLASS),
            Any(std::vector<std::string>{"demo::Word"}));
  EXPECT_EQ(reference.GetProperty(constants::SERVICE_SCOPE), Any(constants::SCOPE_SINGLETON));
  EXPECT_EQ(reference.GetProperty("KIND"), Any(1));
  EXPECT_TRUE(reference.GetProperty("missing").Empty());
}

TEST_F(ServiceRegistry, HigherRankingComesFirstThenLowerId) {
  const auto a = add("a");
  const auto b = add("b", {{constants::SERVICE_RANKING, 5}});
  const auto c = add("c", {{constants::SERVICE_RANKING, -1}});
  const auto d = add("d", {{constants::SERVICE_RANKING, 5}});
  const auto e = add("e");
  EXPECT_THAT(texts(), ElementsAre("b", "d", "a", "e", "c"));
  EXPECT_EQ(context.GetService(context.GetServiceReference<demo::Word>())->text(), "b");
}

TEST_F(ServiceRegistry, ChangedRankingChangesTheOrder) {
  auto a = add("a");
  auto b = add("b");
  EXPECT_THAT(texts(), ElementsAre("a", "b"));
  b.SetProperties({{constants::SERVICE_RANKING, 1}});
  EXPECT_THAT(texts(), ElementsAre("b", "a"));
}

TEST_F(ServiceRegistry, ReferencesCompareByRankingThenId) {
  const auto a = add("a");
  const auto b = add("b");
  const auto c = add("c", {{constants::SERVICE_RANKING, 1}});
  EXPECT_TRUE(b.GetReference() < a.GetReference());
  EXPECT_FALSE(a.GetReference() < b.GetReference());
  EXPECT_TRUE(a.GetReference() < c.GetReference());
  EXPECT_FALSE(a.GetReference() == c.GetReference());
}

TEST_F(ServiceRegistry, FilterSelects) {
  const auto a = add("a", {{"priority", std::string("default")}});
  const auto b = add("b", {{"priority", std::string("high")}});
  const auto c = add("c");
  EXPECT_THAT(texts("(priority=default)"), ElementsAre("a"));
  EXPECT_THAT(texts("(!(priority=default))"), ElementsAre("b", "c"));
  EXPECT_THAT(texts("(priority=*)"), ElementsAre("a", "b"));
  EXPECT_THAT(texts("(objectclass=demo::Word)"), ElementsAre("a", "b", "c"));
}

TEST_F(ServiceRegistry, FilterThatCannotBeParsedIsRefused) {
  const auto registration = add("one");
  EXPECT_THROW(context.GetServiceReferences<demo::Word>("(priority=default"),
               std::invalid_argument);
}

TEST_F(ServiceRegistry, ServiceMayHaveSeveralInterfaces) {
  const auto registration =
      context.RegisterService<demo::Word, demo::Number>(std::make_shared<Both>());
  EXPECT_EQ(context.GetService(context.GetServiceReference<demo::Word>())->text(), "both");
  EXPECT_EQ(context.GetService(context.GetServiceReference<demo::Number>())->value(), 7);
  EXPECT_EQ(context.GetService(registration.GetReference<demo::Number>())->value(), 7);
  EXPECT_TRUE(registration.GetReference().IsConvertibleTo("demo::Number"));
  EXPECT_FALSE(registration.GetReference().IsConvertibleTo("demo::First"));
}

TEST_F(ServiceRegistry, InterfaceMapRegistersWithoutTheTypes) {
  const auto word = std::make_shared<Text>("map");
  const auto map = std::make_shared<InterfaceMap>();
  (*map)["demo::Word"] = std::static_pointer_cast<demo::Word>(word);
  const auto registration = context.RegisterService(map, {{"kind", std::string("map")}});
  EXPECT_THAT(texts("(kind=map)"), ElementsAre("map"));
}

TEST_F(ServiceRegistry, UntypedReferenceGivesTheInterfaceMap) {
  const auto registration = add("one");
  const ServiceReferenceU reference = context.GetServiceReference("demo::Word");
  const InterfaceMapConstPtr map = context.GetService(reference);
  ASSERT_TRUE(map);
  EXPECT_EQ(cppmicroservices::ExtractInterface<demo::Word>(map)->text(), "one");
  EXPECT_EQ(cppmicroservices::ExtractInterface<demo::Number>(map), nullptr);
}

TEST_F(ServiceRegistry, EmptyServiceIsRefused) {
  EXPECT_THROW((void)context.RegisterService<demo::Word>(std::shared_ptr<demo::Word>()),
               std::invalid_argument);
  EXPECT_THROW((void)context.RegisterService(InterfaceMapConstPtr()), std::invalid_argument);
  EXPECT_THROW((void)context.RegisterService(std::make_shared<const InterfaceMap>()),
               std::invalid_argument);
}

TEST_F(ServiceRegistry, UnregisteredServiceIsNotFound) {
  auto registration = add("one");
  const auto reference = registration.GetReference();
  registration.Unregister();
  EXPECT_FALSE(context.GetServiceReference<demo::Word>());
  EXPECT_THROW(context.GetService(reference), std::invalid_argument);
  EXPECT_FALSE(reference);
  EXPECT_FALSE(reference.GetBundle());
  EXPECT_THROW(registration.Unregister(), std::logic_error);
  EXPECT_THROW(registration.GetReference(), std::logic_error);
}

TEST_F(ServiceRegistry, InvalidReferenceIsRefused) {
  EXPECT_THROW(context.GetService(ServiceReference<demo::Word>()), std::invalid_argument);
  EXPECT_THROW(context.GetServiceObjects(ServiceReference<demo::Word>()), std::invalid_argument);
}

TEST_F(ServiceRegistry, ServiceInUseOutlivesItsRegistration) {
  auto registration = add("one");
  const auto held = context.GetService(registration.GetReference());
  registration.Unregister();
  registration = nullptr;
  EXPECT_EQ(held->text(), "one");
}

TEST_F(ServiceRegistry, UsingBundlesAreThoseThatUseTheService) {
  Bundle empty = install("empty");
  empty.Start();
  const auto registration = add("one");
  const auto reference = registration.GetReference();
  EXPECT_THAT(reference.GetUsingBundles(), IsEmpty());
  auto other = empty.GetBundleContext();
  auto held = other.GetService(reference);
  EXPECT_THAT(reference.GetUsingBundles(), ElementsAre(empty));
  held.reset();
  EXPECT_THAT(reference.GetUsingBundles(), IsEmpty());
}

TEST_F(ServiceRegistry, ServicesOfABundleAreUnregisteredWhenItStops) {
  Bundle active = install("active");
  active.Start();
  EXPECT_THAT(active.GetRegisteredServices(), SizeIs(1));
  EXPECT_THAT(texts(), ElementsAre("demo_active"));
  active.Stop();
  EXPECT_THAT(texts(), IsEmpty());
}

TEST_F(ServiceRegistry, ServicesAreReleasedWhenTheBundleThatUsesThemStops) {
  Bundle empty = install("empty");
  empty.Start();
  const auto registration = add("one");
  auto other = empty.GetBundleContext();
  const auto held = other.GetService(registration.GetReference());
  empty.Stop();
  EXPECT_THAT(registration.GetReference().GetUsingBundles(), IsEmpty());
  EXPECT_EQ(held->text(), "one");
}

namespace {

// Creates a separate word for each bundle, and records the calls.
class WordFactory : public cppmicroservices::ServiceFactory {
 public:
  InterfaceMapConstPtr GetService(const Bundle& bundle, const ServiceRegistrationBase&) override {
    calls.push_back("get " + bundle.GetSymbolicName());
    if (broken) throw std::runtime_error("factory is broken");
    if (empty) return nullptr;
    return cppmicroservices::MakeInterfaceMap<demo::Word>(
        std::make_shared<Text>(bundle.GetSymbolicName()));
  }
  void UngetService(const Bundle& bundle, const ServiceRegistrationBase&,
                    const InterfaceMapConstPtr&) override {
    calls.push_back("unget " + bundle.GetSymbolicName());
  }

  std::vector<std::string> calls;
  bool broken = false;
  bool empty = false;
};

class ServiceFactories : public ServiceRegistry {
 protected:
  void SetUp() override {
    ServiceRegistry::SetUp();
    registration = context.RegisterService<demo::Word>(cppmicroservices::ToFactory(factory));
    reference = context.GetServiceReference<demo::Word>();
  }

  std::shared_ptr<WordFactory> factory = std::make_shared<WordFactory>();
  ServiceRegistration<demo::Word> registration;
  ServiceReference<demo::Word> reference;
};

TEST_F(ServiceFactories, BundleGetsOneObjectWhileItIsInUse) {
  auto first = context.GetService(reference);
  auto second = context.GetService(reference);
  EXPECT_EQ(first, second);
  EXPECT_THAT(factory->calls, ElementsAre("get system_bundle"));
  first.reset();
  EXPECT_THAT(factory->calls, SizeIs(1));
  second.reset();
  EXPECT_THAT(factory->calls, ElementsAre("get system_bundle", "unget system_bundle"));
}

TEST_F(ServiceFactories, EachBundleHasItsOwnObject) {
  Bundle empty = install("empty");
  empty.Start();
  auto other = empty.GetBundleContext();
  const auto mine = context.GetService(reference);
  const auto its = other.GetService(reference);
  EXPECT_EQ(its->text(), "demo_empty");
  EXPECT_NE(mine, its);
}

TEST_F(ServiceFactories, UnregisteringReturnsTheObjectsToTheFactory) {
  const auto held = context.GetService(reference);
  registration.Unregister();
  EXPECT_THAT(factory->calls, ElementsAre("get system_bundle", "unget system_bundle"));
  EXPECT_EQ(held->text(), "system_bundle");
}

TEST_F(ServiceFactories, ThrowingFactoryIsReportedAndGivesNull) {
  factory->broken = true;
  EXPECT_EQ(context.GetService(reference), nullptr);
  EXPECT_THAT(takeProblems(), SizeIs(1));
  factory->broken = false;
  EXPECT_NE(context.GetService(reference), nullptr);
}

TEST_F(ServiceFactories, EmptyResultIsReportedAndGivesNull) {
  factory->empty = true;
  EXPECT_EQ(context.GetService(reference), nullptr);
  EXPECT_THAT(takeProblems(), SizeIs(1));
}

TEST_F(ServiceFactories, ServiceObjectsGiveTheObject) {
  auto objects = context.GetServiceObjects(reference);
  EXPECT_EQ(objects.GetServiceReference(), reference);
  auto service = objects.GetService();
  ASSERT_NE(service, nullptr);
  EXPECT_EQ(service->text(), "system_bundle");
  service.reset();
  EXPECT_THAT(factory->calls, ElementsAre("get system_bundle", "unget system_bundle"));
}

class ServiceListeners : public ServiceRegistry {
 protected:
  cppmicroservices::ServiceListener listener() {
    return [this](const ServiceEvent& event) {
      static const char* const kNames[] = {"?", "registered", "modified", "?", "unregistering", "?",
                                           "?", "?",          "endmatch"};
      events.emplace_back(kNames[event.GetType()]);
    };
  }

  // Listeners are also called when the framework stops, before these members are destroyed.
  std::vector<std::string> events;
  std::vector<std::size_t> found;
  std::vector<ServiceRegistration<demo::Number>> numbers;
};

TEST_F(ServiceListeners, ReceiveEveryChange) {
  context.AddServiceListener(listener());
  auto registration = add("one");
  registration.SetProperties({{"kind", 1}});
  registration.Unregister();
  EXPECT_THAT(events, ElementsAre("registered", "modified", "unregistering"));
}

TEST_F(ServiceListeners, FilterSelects) {
  context.AddServiceListener(listener(), "(kind=1)");
  auto other = add("other", {{"kind", 2}});
  other.Unregister();
  EXPECT_THAT(events, IsEmpty());
  auto registration = add("one", {{"kind", 1}});
  registration.SetProperties({{"kind", 2}});
  registration.SetProperties({{"kind", 1}});
  EXPECT_THAT(events, ElementsAre("registered", "endmatch", "modified"));
}

TEST_F(ServiceListeners, BadFilterIsRefused) {
  EXPECT_THROW(context.AddServiceListener(listener(), "(kind=1"), std::invalid_argument);
}

TEST_F(ServiceListeners, RemovedListenerIsNotCalled) {
  auto token = context.AddServiceListener(listener());
  EXPECT_TRUE(token);
  context.RemoveListener(std::move(token));
  const auto registration = add("one");
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(ServiceListeners, ListenerOfAStoppedBundleIsNotCalled) {
  Bundle empty = install("empty");
  empty.Start();
  auto other = empty.GetBundleContext();
  other.AddServiceListener(listener());
  empty.Stop();
  const auto registration = add("one");
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(ServiceListeners, ThrowingListenerIsReportedAndDoesNotStopTheOthers) {
  context.AddServiceListener(
      [](const ServiceEvent&) { throw std::runtime_error("listener is broken"); });
  context.AddServiceListener(listener());
  const auto registration = add("one");
  EXPECT_THAT(events, ElementsAre("registered"));
  EXPECT_THAT(takeProblems(), SizeIs(1));
}

TEST_F(ServiceListeners, UnregisteringServiceCanBeUsedButNotFound) {
  auto registration = add("one");
  context.AddServiceListener([this](const ServiceEvent& event) {
    if (event.GetType() == ServiceEvent::SERVICE_UNREGISTERING) {
      found.push_back(context.GetServiceReferences<demo::Word>().size());
      found.push_back(context.GetService(event.GetServiceReference<demo::Word>()) ? 1 : 0);
    }
  });
  registration.Unregister();
  EXPECT_THAT(found, ElementsAre(0, 1));
}

TEST_F(ServiceListeners, ListenerMayChangeServices) {
  context.AddServiceListener(
      [this](const ServiceEvent&) {
        numbers.push_back(context.RegisterService<demo::Number>(std::make_shared<Both>()));
      },
      "(objectclass=demo::Word)");
  const auto registration = add("one");
  EXPECT_TRUE(context.GetServiceReference<demo::Number>());
}

TEST_F(ServiceRegistry, MayBeUsedFromSeveralThreads) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([this] {
      for (int round = 0; round < 200; ++round) {
        auto registration = add("one", {{"round", round}});
        for (const auto& word : context.GetServiceReferences<demo::Word>("(round>=0)")) {
          // Another thread may have unregistered it.
          try {
            const auto service = context.GetService(word);
            EXPECT_TRUE(!service || service->text() == "one");
          } catch (const std::invalid_argument&) {
          }
        }
        registration.Unregister();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(texts(), IsEmpty());
}

}  // namespace

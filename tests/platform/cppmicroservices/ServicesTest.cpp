#include <cppmicroservices/BundleEvent.h>
#include <cppmicroservices/Constants.h>
#include <cppmicroservices/LDAPFilter.h>
#include <cppmicroservices/ServiceEvent.h>
#include <cppmicroservices/ServiceObjects.h>
#include <cppmicroservices/detail/ServiceState.h>

#include <algorithm>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <unordered_set>

#include "platform/cppmicroservices/HostFramework.hpp"

namespace embedded_framework {
struct NoIdentifier {
  virtual ~NoIdentifier() = default;
};
}  // namespace embedded_framework

CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(embedded_framework::NoIdentifier, "")

namespace embedded_framework {
namespace {

using namespace cppmicroservices;
using namespace std::string_literals;

class Services : public HostFramework {
 protected:
  ServiceRegistration<Greeter> add(const std::string& greeting,
                                   const ServiceProperties& properties = {}) {
    return context.RegisterService<Greeter>(std::make_shared<Hello>(greeting), properties);
  }

  std::string found(const std::string& filter = "") {
    std::string greetings;
    for (const auto& reference : context.GetServiceReferences<Greeter>(filter)) {
      greetings += context.GetService(reference)->greet();
    }
    return greetings;
  }
};

TEST_F(Services, RankingIsAnyIntegerThatFitsAnInt) {
  const std::vector<Any> rankings = {Any(5),   Any(5L),       Any(5LL),         Any(5U),
                                     Any(5UL), Any(short{5}), Any(uint16_t{5}), Any(uint64_t{5})};
  auto a = add("a", {{Constants::SERVICE_RANKING, Any(4)}});
  for (const Any& ranking : rankings) {
    auto b = add("b", {{Constants::SERVICE_RANKING, ranking}});
    EXPECT_EQ(found(), "ba") << ranking.Type().name();
    EXPECT_EQ(b.GetReference().GetProperty(Constants::SERVICE_RANKING), ranking);
    b.Unregister();
  }
  EXPECT_TRUE(errors.empty());
}

TEST_F(Services, RankingThatIsNotAnIntegerCountsAsZeroWithAWarning) {
  std::vector<FrameworkEvent::Type> types;
  context.AddFrameworkListener(
      [&](const FrameworkEvent& event) { types.push_back(event.GetType()); });
  auto a = add("a");
  const std::vector<Any> rankings = {Any("5"s), Any(5.0), Any(true), Any(5'000'000'000L), Any()};
  for (const Any& ranking : rankings) {
    auto b = add("b", {{Constants::SERVICE_RANKING, ranking}});
    EXPECT_EQ(found(), "ab") << ranking.Type().name();
    b.Unregister();
  }
  a.SetProperties({{Constants::SERVICE_RANKING, Any("5"s)}});
  EXPECT_EQ(types, std::vector(rankings.size() + 1, FrameworkEvent::FRAMEWORK_WARNING));
  ASSERT_EQ(errors.size(), rankings.size() + 1);
  EXPECT_EQ(errors[3],
            "the ranking of a service under embedded_framework::Greeter counts as 0: "
            "\"service.ranking\" is 5000000000, not a number that fits an int");
  EXPECT_EQ(errors[4],
            "the ranking of a service under embedded_framework::Greeter counts as 0: "
            "\"service.ranking\" is empty, not a number that fits an int");
}

TEST_F(Services, FrameworkSetsItsProperties) {
  auto registration = add("a", {{"Key", Any("v"s)},
                                {Constants::OBJECTCLASS, Any(std::vector<std::string>{"x"})},
                                {Constants::SERVICE_ID, Any(-1L)},
                                {Constants::SERVICE_SCOPE, Any("x"s)}});
  const auto reference = registration.GetReference();
  EXPECT_EQ(any_cast<std::string>(reference.GetProperty("kEY")), "v");
  EXPECT_TRUE(reference.GetProperty("none").Empty());
  EXPECT_EQ(any_cast<std::vector<std::string>>(reference.GetProperty(Constants::OBJECTCLASS)),
            std::vector<std::string>{"embedded_framework::Greeter"});
  EXPECT_EQ(any_cast<std::string>(reference.GetProperty(Constants::SERVICE_SCOPE)),
            Constants::SCOPE_SINGLETON);
  EXPECT_GT(any_cast<long>(reference.GetProperty(Constants::SERVICE_ID)), 0);
  EXPECT_EQ(reference.GetPropertyKeys().size(), 4U);
  auto later = add("b");
  EXPECT_GT(any_cast<long>(later.GetReference().GetProperty(Constants::SERVICE_ID)),
            any_cast<long>(reference.GetProperty(Constants::SERVICE_ID)));
}

TEST_F(Services, KeysThatDifferInCaseOnlyAreRefused) {
  const ServiceProperties twins{{"a", Any(1)}, {"A", Any(2)}};
  EXPECT_THROW(add("a", twins), std::runtime_error);
  EXPECT_EQ(found(), "");
  auto registration = add("a", {{"p", Any(1)}});
  EXPECT_THROW(registration.SetProperties(twins), std::runtime_error);
  EXPECT_EQ(any_cast<int>(registration.GetReference().GetProperty("p")), 1);
}

TEST_F(Services, WithoutAnObjectAreRefused) {
  EXPECT_THROW((void)context.RegisterService<Greeter>(std::shared_ptr<Hello>()),
               std::invalid_argument);
  EXPECT_THROW((void)context.RegisterService(InterfaceMapConstPtr()), std::invalid_argument);
  EXPECT_THROW((void)context.RegisterService(std::make_shared<const InterfaceMap>()),
               std::invalid_argument);
}

TEST_F(Services, SeveralInterfacesShareOneObject) {
  auto registration = context.RegisterService<Greeter, Counter>(std::make_shared<CountingHello>());
  const ServiceReference<Greeter> greeter = registration.GetReference();
  const ServiceReference<Counter> counter = registration.GetReference<Counter>();
  EXPECT_TRUE(greeter.IsConvertibleTo("embedded_framework::Counter"));
  EXPECT_FALSE(greeter.IsConvertibleTo("embedded_framework::Other"));
  EXPECT_EQ(context.GetService(counter)->count(), 1);
  EXPECT_EQ(context.GetService(greeter)->greet(), "hello");
  const ServiceReferenceU any = greeter;
  EXPECT_EQ(greeter.GetInterfaceId(), "embedded_framework::Greeter");
  const ServiceRegistrationBase& base = registration;
  EXPECT_EQ(base.GetReference().GetInterfaceId(), "");
  EXPECT_EQ(context.GetService(ServiceReference<Counter>(any))->count(), 1);
  const InterfaceMapConstPtr map = context.GetService(any);
  EXPECT_EQ(map->size(), 2U);
  EXPECT_EQ(ExtractInterface<Greeter>(map)->greet(), "hello");
  EXPECT_EQ(ExtractInterface<Greeter>(std::make_shared<const InterfaceMap>()), nullptr);
  EXPECT_EQ(ExtractInterface<Hello>(map), nullptr);
  EXPECT_NE(ExtractInterface(map, "embedded_framework::Counter"), nullptr);
  EXPECT_NE(ExtractInterface(map, ""), nullptr);
  EXPECT_EQ(ExtractInterface(map, "::embedded_framework::Counter"),
            ExtractInterface(map, "embedded_framework::Counter"));
  EXPECT_EQ(ExtractInterface(map, "x"), nullptr);
  EXPECT_EQ(ExtractInterface(InterfaceMapConstPtr(), ""), nullptr);
  EXPECT_EQ(ExtractInterface(std::make_shared<const InterfaceMap>(), ""), nullptr);
}

TEST_F(Services, ReferenceUnderAnotherInterfaceIsEmpty) {
  auto registration = add("a");
  ServiceReference<Counter> counter{ServiceReferenceBase(registration.GetReference())};
  EXPECT_FALSE(counter);
  counter = ServiceReferenceBase(registration.GetReference());
  EXPECT_FALSE(counter);
  ServiceReference<Greeter> greeter;
  EXPECT_FALSE(greeter);
  EXPECT_EQ(greeter.GetInterfaceId(), "");
  greeter = registration.GetReference();
  EXPECT_TRUE(greeter);
  greeter = nullptr;
  EXPECT_FALSE(greeter);
}

TEST_F(Services, InterfaceWithoutIdentifierCannotBeLookedUp) {
  const std::string text =
      "The service interface class has no CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE macro";
  try {
    context.GetServiceReferences<NoIdentifier>();
    FAIL();
  } catch (const ServiceException& exception) {
    EXPECT_EQ(exception.what(), text);
    EXPECT_EQ(exception.GetType(), ServiceException::UNSPECIFIED);
  }
  EXPECT_THROW(context.GetServiceReference<NoIdentifier>(), ServiceException);
}

TEST_F(Services, UserKeepsTheObjectOfAnUnregisteredService) {
  const auto object = std::make_shared<Hello>("a");
  const std::weak_ptr<Hello> life = object;
  auto registration = context.RegisterService<Greeter>(std::shared_ptr<Hello>(object));
  const auto reference = registration.GetReference();
  auto held = context.GetService(reference);
  registration.Unregister();
  EXPECT_EQ(held->greet(), "a");
  EXPECT_FALSE(reference);
  EXPECT_FALSE(reference.GetBundle());
  EXPECT_TRUE(reference.GetUsingBundles().empty());
  EXPECT_EQ(reference.GetPropertyKeys().size(), 3U);
  EXPECT_EQ(life.use_count() > 1, true);
  held = nullptr;
  EXPECT_EQ(life.use_count(), 1);
}

TEST_F(Services, RegistrationEndsOnce) {
  auto registration = add("a");
  auto copy = registration;
  EXPECT_TRUE(copy == registration);
  registration.Unregister();
  EXPECT_TRUE(registration);
  EXPECT_THROW(copy.Unregister(), std::logic_error);
  EXPECT_THROW(copy.SetProperties(ServiceProperties()), std::logic_error);
  EXPECT_THROW(copy.GetReference(), std::logic_error);
  copy = nullptr;
  EXPECT_FALSE(copy);
  EXPECT_TRUE(copy < registration);
  EXPECT_THROW(ServiceRegistrationU().Unregister(), std::logic_error);
}

TEST_F(Services, RegistrationIsPrintedLikeItsReference) {
  const auto printed = [](const auto& value) {
    std::ostringstream text;
    text << value;
    return text.str();
  };
  auto registration = add("a", {{"kind", Any("x"s)}});
  EXPECT_NE(printed(registration).find("kind=x"), std::string::npos);
  EXPECT_EQ(printed(registration), printed(registration.GetReference()));
  EXPECT_EQ(printed(ServiceRegistrationU()), "Invalid service reference");
}

TEST_F(Services, RegistrationThatIsEndingIsNotEndedAgain) {
  auto registration = add("a");
  int told = 0;
  context.AddServiceListener([&](const ServiceEvent& event) {
    EXPECT_EQ(event.GetType(), ServiceEvent::SERVICE_UNREGISTERING);
    EXPECT_THROW(registration.Unregister(), std::logic_error);
    ++told;
  });
  registration.Unregister();
  EXPECT_EQ(told, 1);
}

TEST_F(Services, RegistrationThatIsEndingKeepsItsProperties) {
  auto registration = add("a", {{"p", Any(1)}});
  std::vector<ServiceEvent::Type> heard;
  context.AddServiceListener([&](const ServiceEvent& event) {
    heard.push_back(event.GetType());
    if (event.GetType() != ServiceEvent::SERVICE_UNREGISTERING) return;
    EXPECT_THROW(registration.SetProperties({{"p", Any(2)}}), std::logic_error);
    EXPECT_EQ(found(), "");
  });
  const auto reference = registration.GetReference();
  registration.Unregister();
  EXPECT_EQ(any_cast<int>(reference.GetProperty("p")), 1);
  EXPECT_EQ(heard, std::vector{ServiceEvent::SERVICE_UNREGISTERING});
  EXPECT_EQ(found(), "");
}

TEST_F(Services, ListenerIsNotToldOfAChangeAfterTheEnd) {
  auto registration = add("a");
  context.AddServiceListener([&](const ServiceEvent& event) {
    if (event.GetType() == ServiceEvent::SERVICE_MODIFIED) registration.Unregister();
  });
  std::vector<ServiceEvent::Type> heard;
  context.AddServiceListener([&](const ServiceEvent& event) { heard.push_back(event.GetType()); });
  registration.SetProperties({{"p", Any(1)}});
  EXPECT_EQ(heard, std::vector{ServiceEvent::SERVICE_UNREGISTERING});
}

TEST_F(Services, ListenerIsToldOfALostMatchWhenTheServiceEndsMeanwhile) {
  auto registration = add("a", {{"p", Any(1)}});
  context.AddServiceListener([&](const ServiceEvent& event) {
    if (event.GetType() == ServiceEvent::SERVICE_MODIFIED) registration.Unregister();
  });
  std::vector<ServiceEvent::Type> heard;
  context.AddServiceListener([&](const ServiceEvent& event) { heard.push_back(event.GetType()); },
                             "(p=1)");
  registration.SetProperties({{"p", Any(2)}});
  EXPECT_EQ(heard, std::vector{ServiceEvent::SERVICE_MODIFIED_ENDMATCH});
}

TEST_F(Services, ListenerIsCalledWhenItsFilterMatchesBeforeOrAfterAChange) {
  std::vector<ServiceEvent::Type> heard;
  context.AddServiceListener([&](const ServiceEvent& event) { heard.push_back(event.GetType()); },
                             "(p=1)");
  auto registration = add("a");
  registration.SetProperties({{"p", Any(2)}});
  EXPECT_TRUE(heard.empty());
  registration.SetProperties({{"p", Any(1)}});
  registration.SetProperties({{"p", Any(2)}});
  EXPECT_EQ(heard,
            (std::vector{ServiceEvent::SERVICE_MODIFIED, ServiceEvent::SERVICE_MODIFIED_ENDMATCH}));
}

TEST_F(Services, FiltersMatchReferencesAndBundles) {
  auto registration = add("a", {{"kind", Any("x"s)}});
  EXPECT_TRUE(LDAPFilter("(kind=x)").Match(registration.GetReference()));
  EXPECT_FALSE(LDAPFilter("(kind=y)").Match(registration.GetReference()));
  EXPECT_FALSE(LDAPFilter("(!(kind=x))").Match(ServiceReferenceU()));
  const std::string name = framework.GetSymbolicName();
  EXPECT_TRUE(LDAPFilter("(bundle.symbolic_name=" + name + ")").Match(framework));
  EXPECT_FALSE(LDAPFilter("(!(bundle.symbolic_name=" + name + "))").Match(framework));
}

TEST_F(Services, VoidIsNotAnInterface) {
  EXPECT_EQ(us_service_interface_iid<void>(), "");
}

TEST_F(Services, EmptyReferenceHasNoProperties) {
  const ServiceReferenceU none;
  EXPECT_TRUE(none.GetProperty("a").Empty());
  EXPECT_TRUE(none.GetPropertyKeys().empty());
  EXPECT_TRUE(none.GetUsingBundles().empty());
  EXPECT_FALSE(none.GetBundle());
  EXPECT_FALSE(none.IsConvertibleTo("embedded_framework::Greeter"));
  EXPECT_FALSE(detail::isFindable(none));
}

TEST_F(Services, EmptyReferenceIsRefused) {
  EXPECT_THROW(context.GetService(ServiceReference<Greeter>()), std::invalid_argument);
  EXPECT_THROW(context.GetService(ServiceReferenceU()), std::invalid_argument);
  EXPECT_THROW(context.GetServiceObjects(ServiceReference<Greeter>()), std::invalid_argument);
  auto registration = add("a");
  const auto reference = registration.GetReference();
  registration.Unregister();
  EXPECT_THROW(context.GetService(reference), std::invalid_argument);
  EXPECT_TRUE(ServiceReferenceU().GetProperty("a").Empty());
}

TEST_F(Services, ServiceObjectsReturnTheService) {
  auto registration = add("a");
  auto objects = context.GetServiceObjects(registration.GetReference());
  EXPECT_EQ(objects.GetService()->greet(), "a");
  EXPECT_TRUE(objects.GetServiceReference() == registration.GetReference());
  auto moved = std::move(objects);
  EXPECT_EQ(moved.GetService()->greet(), "a");
  auto maps = context.GetServiceObjects(ServiceReferenceU(registration.GetReference()));
  EXPECT_EQ(maps.GetService()->size(), 1U);
  EXPECT_TRUE(maps.GetServiceReference() == ServiceReferenceU(registration.GetReference()));
  moved = context.GetServiceObjects(registration.GetReference());
  registration.Unregister();
  EXPECT_EQ(moved.GetService(), nullptr);
  EXPECT_EQ(maps.GetService(), nullptr);
}

TEST_F(Services, ReferencesCanBeKeysOfHashTables) {
  auto a = add("a");
  auto b = add("b");
  const std::unordered_set<ServiceReference<Greeter>> references{a.GetReference(), b.GetReference(),
                                                                 a.GetReference()};
  EXPECT_EQ(references.size(), 2U);
  const std::unordered_set<ServiceRegistrationBase> registrations{a, b, a};
  EXPECT_EQ(registrations.size(), 2U);
  EXPECT_FALSE(ServiceReferenceU() < ServiceReferenceU());
  EXPECT_TRUE(ServiceReferenceU() < a.GetReference());
  EXPECT_FALSE(a.GetReference() < ServiceReferenceU());
}

TEST_F(Services, ListenerThatIsRemovedMeanwhileIsNotCalled) {
  ListenerToken second;
  context.AddServiceListener(
      [&](const ServiceEvent&) { context.RemoveListener(std::move(second)); });
  int calls = 0;
  second = context.AddServiceListener([&](const ServiceEvent&) { ++calls; });
  // Listeners are called in the order in which they were added.
  auto registration = add("a");
  EXPECT_EQ(calls, 0);
  registration.Unregister();
  EXPECT_EQ(calls, 0);
}

TEST_F(Services, ListenerThatIsAddedMeanwhileIsNotCalled) {
  int calls = 0;
  std::vector<ListenerToken> added;
  context.AddServiceListener([&](const ServiceEvent&) {
    added.push_back(context.AddServiceListener([&](const ServiceEvent&) { ++calls; }));
  });
  auto registration = add("a");
  EXPECT_EQ(calls, 0);
  registration.Unregister();
  EXPECT_EQ(calls, 1);
}

/// Calls the framework each time it is copied, as the listener of a user may.
struct CopyingListener {
  explicit CopyingListener(std::function<void()> onCopy) : action(std::move(onCopy)) {}
  CopyingListener(const CopyingListener& other) : action(other.action) { action(); }
  CopyingListener& operator=(const CopyingListener&) = delete;
  void operator()(const ServiceEvent& /*event*/) const {}
  std::function<void()> action;
};

TEST_F(Services, CopyOfAListenerMayCallTheFramework) {
  int copies = 0;
  const ServiceListener listener = CopyingListener([&] {
    context.RemoveListener(context.AddBundleListener([](const BundleEvent&) {}));
    ++copies;
  });
  copies = 0;
  context.AddServiceListener(listener);
  EXPECT_GT(copies, 0);
}

TEST_F(Services, MovedReferenceHasNoInterface) {
  auto registration = add("a");
  ServiceReference<Greeter> reference = registration.GetReference();
  const ServiceReference<Greeter> moved = std::move(reference);
  EXPECT_EQ(moved.GetInterfaceId(), "embedded_framework::Greeter");
  EXPECT_EQ(reference.GetInterfaceId(), "");  // NOLINT(bugprone-use-after-move)
}

TEST_F(Services, TokenOfAnotherFrameworkRemovesNothing) {
  Framework other = FrameworkFactory().NewFramework();
  other.Start();
  int heard = 0;
  context.AddServiceListener([&](const ServiceEvent&) { ++heard; });
  std::vector<ListenerToken> others;
  for (int count = 0; count < 20; ++count) {
    others.push_back(other.GetBundleContext().AddServiceListener([](const ServiceEvent&) {}));
  }
  for (ListenerToken& token : others) context.RemoveListener(std::move(token));
  auto registration = add("a");
  EXPECT_EQ(heard, 1);
}

TEST_F(Services, ReferenceOfAnotherFrameworkIsRefused) {
  Framework other = FrameworkFactory().NewFramework();
  other.Start();
  auto registration = add("a");
  const auto reference = registration.GetReference();
  BundleContext others = other.GetBundleContext();
  EXPECT_THROW(others.GetService(reference), std::invalid_argument);
  EXPECT_THROW(others.GetService(ServiceReferenceU(reference)), std::invalid_argument);
  EXPECT_THROW(others.GetServiceObjects(reference), std::invalid_argument);
  EXPECT_TRUE(reference.GetUsingBundles().empty());
}

TEST_F(Services, TokensMove) {
  ListenerToken token = context.AddServiceListener([](const ServiceEvent&) {});
  EXPECT_TRUE(token);
  ListenerToken moved(std::move(token));
  EXPECT_TRUE(moved);
  ListenerToken empty;
  EXPECT_FALSE(empty);
  empty = std::move(moved);
  EXPECT_TRUE(empty);
  context.RemoveListener(ListenerToken());
}

TEST_F(Services, InvalidContextThrows) {
  auto registration = add("a");
  auto objects = context.GetServiceObjects(registration.GetReference());
  const BundleContext copy = context;
  EXPECT_TRUE(copy == context);
  stop();
  EXPECT_FALSE(context);
  const std::vector<std::function<void()>> calls = {
      [&] { context.GetServiceReferences<Greeter>(); },
      [&] { context.GetServiceReference("x"); },
      [&] { add("b"); },
      [&] { context.GetBundle(); },
      [&] { context.GetBundle(0); },
      [&] { context.GetBundles(); },
      [&] { context.GetBundles("x"); },
      [&] { context.InstallBundles("x"); },
      [&] { objects.GetService(); },
      [&] { context.GetService(ServiceReferenceU()); },
      [&] { context.AddServiceListener([](const ServiceEvent&) {}); },
      [&] { context.AddFrameworkListener([](const FrameworkEvent&) {}); },
      [&] { context.RemoveListener(ListenerToken()); },
      [&] { BundleContext().GetBundles(); },
  };
  for (const auto& call : calls) {
    try {
      call();
      ADD_FAILURE();
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), "The bundle context is no longer valid");
    }
  }
  context = nullptr;
  EXPECT_FALSE(context == copy);
  EXPECT_TRUE(context < copy);
}

}  // namespace
}  // namespace embedded_framework

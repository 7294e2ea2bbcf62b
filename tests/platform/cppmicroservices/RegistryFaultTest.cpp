#include <cppmicroservices/Constants.h>
#include <cppmicroservices/LDAPFilter.h>
#include <cppmicroservices/ServiceFactory.h>

#include <new>

#include "platform/cppmicroservices/HostFramework.hpp"
#include "support/FailingAllocations.hpp"

namespace embedded_framework {
namespace {

using namespace cppmicroservices;
using quenlith::test::allocationCount;
using quenlith::test::failEachAllocation;

/// A service factory whose objects are counted.
class CountingFactory : public ServiceFactory {
 public:
  InterfaceMapConstPtr GetService(const Bundle&, const ServiceRegistrationBase&) override {
    InterfaceMapConstPtr service = MakeInterfaceMap<Greeter>(std::make_shared<Hello>());
    ++inUse;
    return service;
  }
  void UngetService(const Bundle&, const ServiceRegistrationBase&,
                    const InterfaceMapConstPtr&) override {
    --inUse;
  }

  int inUse = 0;
};

/// The registry when each allocation fails in turn.
class RegistryFaults : public HostFramework {
 protected:
  /// Returns the greetings of all services in the order of preference.
  std::vector<std::string> greetings() {
    std::vector<std::string> found;
    for (const auto& reference : context.GetServiceReferences<Greeter>()) {
      found.push_back(context.GetService(reference)->greet());
    }
    return found;
  }

  ServiceRegistration<Greeter> registration =
      context.RegisterService<Greeter>(std::make_shared<Hello>("first"), {{"a", Any(1)}});
};

TEST_F(RegistryFaults, ServiceIsRegisteredOrNot) {
  const auto service = std::make_shared<CountingHello>();
  ServiceRegistration<Counter, Greeter> added;
  const auto isAbsent = [this] {
    return greetings() == std::vector<std::string>{"first"} &&
           !context.GetServiceReference<Counter>() && framework.GetRegisteredServices().size() == 1;
  };
  const std::size_t failures =
      failEachAllocation([&] { added = context.RegisterService<Counter, Greeter>(service); },
                         [&] { ASSERT_TRUE(isAbsent()); });
  EXPECT_GT(failures, 10U);
  EXPECT_EQ(framework.GetRegisteredServices().size(), 2U);
  EXPECT_TRUE(context.GetServiceReference<Counter>());
  added.Unregister();
  EXPECT_TRUE(isAbsent());
}

TEST_F(RegistryFaults, PropertiesAreReplacedOrNot) {
  auto other = context.RegisterService<Greeter>(std::make_shared<Hello>("second"));
  const auto reference = other.GetReference();
  const ServiceProperties preferred = {{Constants::SERVICE_RANKING, Any(1)}};
  const std::vector<std::string> before = {"first", "second"};
  const std::size_t failures =
      failEachAllocation([&] { other.SetProperties(preferred); },
                         [&] {
                           ASSERT_EQ(greetings(), before);
                           ASSERT_TRUE(reference.GetProperty(Constants::SERVICE_RANKING).Empty());
                         });
  EXPECT_GT(failures, 5U);
  EXPECT_EQ(greetings(), (std::vector<std::string>{"second", "first"}));
}

TEST_F(RegistryFaults, ServiceIsUsedOrNot) {
  const auto reference = registration.GetReference();
  std::shared_ptr<Greeter> service;
  const std::size_t failures =
      failEachAllocation([&] { service = context.GetService(reference); },
                         [&] { ASSERT_TRUE(reference.GetUsingBundles().empty()); });
  EXPECT_GT(failures, 1U);
  EXPECT_EQ(reference.GetUsingBundles(), std::vector<Bundle>{framework});
  service = nullptr;
  EXPECT_TRUE(reference.GetUsingBundles().empty());
}

TEST_F(RegistryFaults, ObjectOfAFactoryIsUsedOrReturned) {
  const auto factory = std::make_shared<CountingFactory>();
  const auto made = context.RegisterService<Greeter>(ToFactory(factory));
  const auto reference = made.GetReference();
  std::shared_ptr<Greeter> service;
  // A factory that runs out of memory creates no object, and the caller gets null.
  const auto get = [&] {
    service = context.GetService(reference);
    if (!service) throw std::bad_alloc();
  };
  const std::size_t failures = failEachAllocation(get, [&] {
    ASSERT_EQ(factory->inUse, 0);
    ASSERT_TRUE(reference.GetUsingBundles().empty());
  });
  EXPECT_GT(failures, 3U);
  EXPECT_EQ(factory->inUse, 1);
  service = nullptr;
  EXPECT_EQ(factory->inUse, 0);
}

TEST_F(RegistryFaults, UnregisteringDoesNotAllocate) {
  auto object = context.GetService(registration.GetReference());
  const std::size_t before = allocationCount();
  registration.Unregister();
  object = nullptr;
  EXPECT_EQ(allocationCount(), before);
}

TEST_F(RegistryFaults, LookupThatFindsNothingDoesNotAllocate) {
  EXPECT_TRUE(context.GetServiceReferences<Counter>().empty());
  const std::size_t before = allocationCount();
  auto own = framework.GetBundleContext();
  EXPECT_TRUE(own.GetServiceReferences<Counter>(LDAPFilter().ToString()).empty());
  EXPECT_EQ(allocationCount(), before);
}

}  // namespace
}  // namespace embedded_framework

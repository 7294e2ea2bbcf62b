#include <cppmicroservices/Constants.h>
#include <cppmicroservices/ServiceFactory.h>
#include <cppmicroservices/ServiceObjects.h>

#include <functional>
#include <stdexcept>

#include "platform/cppmicroservices/HostFramework.hpp"

namespace embedded_framework {
namespace {

using namespace cppmicroservices;

/// A factory that does what a test sets, and counts its calls.
class Workshop : public ServiceFactory {
 public:
  InterfaceMapConstPtr GetService(const Bundle& bundle, const ServiceRegistrationBase&) override {
    ++made;
    user = bundle.GetBundleId();
    return make();
  }
  void UngetService(const Bundle&, const ServiceRegistrationBase&,
                    const InterfaceMapConstPtr& service) override {
    ++returned;
    EXPECT_NE(ExtractInterface<Greeter>(service), nullptr);
    takeBack();
  }

  std::function<InterfaceMapConstPtr()> make = [] {
    return InterfaceMapConstPtr(MakeInterfaceMap<Greeter>(std::make_shared<Hello>()));
  };
  std::function<void()> takeBack = [] {};
  int made = 0;
  int returned = 0;
  // The id and not the bundle, which would keep alive the framework that owns this factory.
  long user = -1;
};

class ServiceFactories : public HostFramework {
 protected:
  ServiceFactories()
      : workshop(std::make_shared<Workshop>()),
        registration(context.RegisterService<Greeter>(ToFactory(workshop))),
        reference(registration.GetReference()) {
    context.AddFrameworkListener([this](const FrameworkEvent& event) { note(event); });
  }

  void note(const FrameworkEvent& event) {
    EXPECT_EQ(event.GetType(), FrameworkEvent::FRAMEWORK_ERROR);
    try {
      std::rethrow_exception(event.GetThrowable());
    } catch (const ServiceException& exception) {
      errors.push_back(exception.GetType());
    }
  }

  std::shared_ptr<Workshop> workshop;
  ServiceRegistration<Greeter> registration;
  ServiceReference<Greeter> reference;
  std::vector<ServiceException::Type> errors;
};

TEST_F(ServiceFactories, ReceiveTheBundleThatUsesTheService) {
  EXPECT_NE(context.GetService(reference), nullptr);
  EXPECT_EQ(workshop->user, context.GetBundle().GetBundleId());
}

TEST_F(ServiceFactories, GetTheirObjectReturnedOnce) {
  auto held = context.GetService(reference);
  registration.Unregister();
  held = nullptr;
  EXPECT_EQ(workshop->returned, 1);
}

TEST_F(ServiceFactories, GetTheirObjectReturnedWhenTheFrameworkStops) {
  auto held = context.GetService(reference);
  stop();
  EXPECT_EQ(workshop->returned, 1);
  EXPECT_EQ(held->greet(), "hello");
}

TEST_F(ServiceFactories, ThatThrowAreReported) {
  workshop->make = []() -> InterfaceMapConstPtr { throw std::runtime_error("no"); };
  EXPECT_EQ(context.GetService(reference), nullptr);
  EXPECT_EQ(errors, std::vector{ServiceException::FACTORY_EXCEPTION});
  EXPECT_TRUE(reference.GetUsingBundles().empty());
}

TEST_F(ServiceFactories, ThatReturnNothingAreReported) {
  workshop->make = [] { return nullptr; };
  EXPECT_EQ(context.GetService(reference), nullptr);
  workshop->make = [] { return std::make_shared<InterfaceMap>(); };
  EXPECT_EQ(context.GetService(ServiceReferenceU(reference)), nullptr);
  EXPECT_EQ(errors,
            (std::vector{ServiceException::FACTORY_ERROR, ServiceException::FACTORY_ERROR}));
}

TEST_F(ServiceFactories, ThatFailWhileTheirServiceGoesAreNotReported) {
  workshop->make = [this]() -> InterfaceMapConstPtr {
    registration.Unregister();
    throw std::runtime_error("gone");
  };
  EXPECT_EQ(context.GetService(reference), nullptr);
  registration = context.RegisterService<Greeter>(ToFactory(workshop));
  workshop->make = [this] {
    registration.Unregister();
    return nullptr;
  };
  EXPECT_EQ(context.GetService(registration.GetReference()), nullptr);
  EXPECT_EQ(workshop->made, 2);
  EXPECT_TRUE(errors.empty());
}

TEST_F(ServiceFactories, ThatReturnAnotherInterfaceAreReported) {
  workshop->make = [] {
    return InterfaceMapConstPtr(MakeInterfaceMap<Counter>(std::make_shared<Counter>()));
  };
  EXPECT_EQ(context.GetService(reference), nullptr);
  EXPECT_EQ(errors, std::vector{ServiceException::FACTORY_ERROR});
}

TEST_F(ServiceFactories, ThatRequestTheirOwnServiceAreReported) {
  workshop->make = [this] {
    EXPECT_EQ(context.GetService(reference), nullptr);
    return InterfaceMapConstPtr(MakeInterfaceMap<Greeter>(std::make_shared<Hello>()));
  };
  EXPECT_NE(context.GetService(reference), nullptr);
  EXPECT_EQ(errors, std::vector{ServiceException::FACTORY_RECURSION});
}

TEST_F(ServiceFactories, ThatThrowWhenTheObjectIsReturnedAreReported) {
  workshop->takeBack = [] { throw std::runtime_error("no"); };
  EXPECT_NE(context.GetService(reference), nullptr);
  EXPECT_EQ(errors, std::vector{ServiceException::FACTORY_EXCEPTION});
}

TEST_F(ServiceFactories, ThatAreNullAreRefused) {
  EXPECT_THROW(context.RegisterService<Greeter>(std::shared_ptr<ServiceFactory>()),
               ServiceException);
}

TEST_F(ServiceFactories, ExceptionsOfServicesAreCopied) {
  const ServiceException original("text", ServiceException::REMOTE);
  ServiceException copy("other");
  EXPECT_EQ(copy.GetType(), ServiceException::UNSPECIFIED);
  copy = original;
  EXPECT_EQ(copy.GetType(), ServiceException::REMOTE);
  EXPECT_STREQ(copy.what(), "text");
}

}  // namespace
}  // namespace embedded_framework

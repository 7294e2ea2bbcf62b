#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include <cppmicroservices/BundleEvent.h>
#include <cppmicroservices/FrameworkEvent.h>
#include <cppmicroservices/ServiceEvent.h>

#include "FrameworkFixture.hpp"

using cppmicroservices::Any;
using cppmicroservices::Bundle;
using cppmicroservices::BundleEvent;
using cppmicroservices::FrameworkEvent;
using cppmicroservices::ServiceEvent;

// The functions under test are deprecated, but authors of bundles still use them.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace {

class Name : public demo::Word {
 public:
  std::string text() const override { return "name"; }
};

int freeCalls = 0;

void countFreely(const ServiceEvent& /*event*/) {
  ++freeCalls;
}
void countFreelyToo(const ServiceEvent& /*event*/) {
  ++freeCalls;
}
void countBundlesFreely(const BundleEvent& /*event*/) {
  ++freeCalls;
}
void countProblemsFreely(const FrameworkEvent& /*event*/) {
  ++freeCalls;
}

struct Receiver {
  void onService(const ServiceEvent& /*event*/) { ++services; }
  void onBundle(const BundleEvent& /*event*/) { ++bundles; }
  void onFramework(const FrameworkEvent& /*event*/) { ++frameworks; }

  int services = 0;
  int bundles = 0;
  int frameworks = 0;
};

class ListenerRemoval : public FrameworkFixture {
 protected:
  void registerWord() {
    context.RegisterService<demo::Word>(std::make_shared<Name>()).Unregister();
  }
};

TEST_F(ListenerRemoval, FunctionIsFoundByItsValue) {
  freeCalls = 0;
  context.AddServiceListener(&countFreely);
  // CppMicroServices 3.8.12 removes the other function, against its documentation.
  if (EMBEDDED_FRAMEWORK) context.RemoveServiceListener(&countFreelyToo);
  registerWord();
  EXPECT_EQ(freeCalls, 2);
  context.RemoveServiceListener(&countFreely);
  registerWord();
  EXPECT_EQ(freeCalls, 2);
  context.RemoveServiceListener(&countFreely);
}

TEST_F(ListenerRemoval, BundleAndFrameworkListenersAreFoundByTheirFunctions) {
  freeCalls = 0;
  context.AddBundleListener(&countBundlesFreely);
  Bundle empty = install("empty");
  const int heard = freeCalls;
  EXPECT_GT(heard, 0);
  context.RemoveBundleListener(&countBundlesFreely);
  empty.Uninstall();
  EXPECT_EQ(freeCalls, heard);

  freeCalls = 0;
  context.AddFrameworkListener(&countProblemsFreely);
  context.AddServiceListener([](const ServiceEvent& /*event*/) { throw 5; });
  registerWord();
  EXPECT_EQ(freeCalls, 2);
  context.RemoveFrameworkListener(&countProblemsFreely);
  registerWord();
  EXPECT_EQ(freeCalls, 2);
}

TEST_F(ListenerRemoval, MemberFunctionIsFoundByReceiverAndFunction) {
  Receiver one;
  Receiver two;
  context.AddServiceListener(&one, &Receiver::onService);
  context.AddServiceListener(&two, &Receiver::onService, "(kind=x)");
  registerWord();
  EXPECT_EQ(one.services, 2);
  EXPECT_EQ(two.services, 0);
  context.RemoveServiceListener(&two, &Receiver::onService);
  registerWord();
  EXPECT_EQ(one.services, 4);
  context.RemoveServiceListener(&one, &Receiver::onService);
  registerWord();
  EXPECT_EQ(one.services, 4);
}

TEST_F(ListenerRemoval, BundleAndFrameworkListenersAreRemoved) {
  Receiver receiver;
  context.AddBundleListener(&receiver, &Receiver::onBundle);
  Bundle empty = install("empty");
  const int heard = receiver.bundles;
  EXPECT_GT(heard, 0);
  context.RemoveBundleListener(&receiver, &Receiver::onBundle);
  empty.Uninstall();
  EXPECT_EQ(receiver.bundles, heard);

  context.AddFrameworkListener(&receiver, &Receiver::onFramework);
  context.AddServiceListener([](const ServiceEvent& /*event*/) { throw 5; });
  registerWord();
  const int errors = receiver.frameworks;
  EXPECT_GT(errors, 0);
  context.RemoveFrameworkListener(&receiver, &Receiver::onFramework);
  registerWord();
  EXPECT_EQ(receiver.frameworks, errors);
}

TEST_F(ListenerRemoval, PropertiesOfABundleAreItsManifest) {
  const Bundle parts = install("parts");
  EXPECT_EQ(parts.GetProperties().at("purpose"), Any(std::string("test")));
  EXPECT_EQ(parts.GetProperty("purpose"), Any(std::string("test")));
  EXPECT_TRUE(parts.GetProperty("no such key").Empty());
  EXPECT_EQ(parts.GetPropertyKeys().size(), parts.GetHeaders().size());
}

}  // namespace

#pragma GCC diagnostic pop

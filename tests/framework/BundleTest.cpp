#include <gmock/gmock.h>

#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <cppmicroservices/BundleEvent.h>
#include <cppmicroservices/Constants.h>
#include <cppmicroservices/FrameworkEvent.h>

#include "FrameworkFixture.hpp"

using cppmicroservices::Any;
using cppmicroservices::AnyMap;
using cppmicroservices::Bundle;
using cppmicroservices::BundleContext;
using cppmicroservices::BundleEvent;
using cppmicroservices::FrameworkEvent;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using testing::ThrowsMessage;

namespace {

class Mark : public demo::Broken, public demo::LeftA {};

constexpr const char* kInvalidContext = "The bundle context is no longer valid";

}  // namespace

class Bundles : public FrameworkFixture {
 protected:
  // Listeners are also called when the framework stops, before these members are destroyed.
  std::vector<unsigned> types;
};

TEST_F(Bundles, InstalledBundleHasItsNameLocationAndState) {
  const Bundle parts = install("parts");
  ASSERT_TRUE(parts);
  EXPECT_EQ(parts.GetSymbolicName(), "demo_parts");
  EXPECT_EQ(parts.GetLocation(), pathOf("parts"));
  EXPECT_EQ(parts.GetState(), Bundle::STATE_INSTALLED);
  EXPECT_GT(parts.GetBundleId(), 0);
  EXPECT_FALSE(parts.GetBundleContext());
}

TEST_F(Bundles, HeadersAreTheManifest) {
  const AnyMap headers = install("parts").GetHeaders();
  EXPECT_EQ(headers.at("purpose"), Any(std::string("test")));
  EXPECT_EQ(headers.at("bundle.activator"), Any(false));
  EXPECT_EQ(headers.at("BUNDLE.symbolic_NAME"), Any(std::string("demo_parts")));
  EXPECT_EQ(headers.AtCompoundKey("scr.version"), Any(1));
  EXPECT_EQ(headers.AtCompoundKey("scr.components.0.implementation-class"),
            Any(std::string("demo::Plain")));
  EXPECT_EQ(headers.AtCompoundKey("numbers.0"), Any(1));
  EXPECT_EQ(headers.AtCompoundKey("numbers.1"), Any(2.5));
  EXPECT_EQ(headers.AtCompoundKey("numbers.2"), Any(std::string("three")));
  EXPECT_EQ(headers.AtCompoundKey("numbers.3"), Any(true));
  EXPECT_EQ(headers.AtCompoundKey("numbers.4.four"), Any(4));
}

TEST_F(Bundles, InstallingAgainGivesTheSameBundle) {
  const Bundle parts = install("parts");
  EXPECT_EQ(install("parts"), parts);
  EXPECT_THAT(context.GetBundles(), SizeIs(testing::Ge(2U)));
  EXPECT_THAT(context.GetBundles(pathOf("parts")), ElementsAre(parts));
  EXPECT_EQ(context.GetBundle(parts.GetBundleId()), parts);
  EXPECT_FALSE(context.GetBundle(9999));
}

TEST_F(Bundles, SystemBundleIsTheFramework) {
  EXPECT_EQ(context.GetBundle(), framework);
  EXPECT_EQ(framework.GetBundleId(), 0);
  EXPECT_EQ(framework.GetSymbolicName(), cppmicroservices::Constants::SYSTEM_BUNDLE_SYMBOLICNAME);
  EXPECT_EQ(framework.GetLocation(), cppmicroservices::Constants::SYSTEM_BUNDLE_LOCATION);
  EXPECT_EQ(context.GetBundle(0), framework);
}

TEST_F(Bundles, FileThatCannotBeUsedIsRefused) {
  EXPECT_THROW(context.InstallBundles("/no/such/file.so"), std::runtime_error);
  EXPECT_THROW(context.InstallBundles(""), std::exception);
  EXPECT_NO_THROW(install("parts"));
}

TEST_F(Bundles, StartAndStopChangeTheState) {
  Bundle empty = install("empty");
  empty.Start();
  EXPECT_EQ(empty.GetState(), Bundle::STATE_ACTIVE);
  EXPECT_TRUE(empty.GetBundleContext());
  EXPECT_EQ(empty.GetBundleContext().GetBundle(), empty);
  empty.Start();
  EXPECT_EQ(empty.GetState(), Bundle::STATE_ACTIVE);
  empty.Stop();
  EXPECT_EQ(empty.GetState(), Bundle::STATE_RESOLVED);
  empty.Stop();
  EXPECT_EQ(empty.GetState(), Bundle::STATE_RESOLVED);
  EXPECT_FALSE(empty.GetBundleContext());
}

TEST_F(Bundles, ActivatorRunsAtEveryStart) {
  Bundle active = install("active");
  for (int round = 0; round < 3; ++round) {
    active.Start();
    const auto word = context.GetServiceReference<demo::Word>();
    ASSERT_TRUE(word);
    EXPECT_EQ(context.GetService(word)->text(), "demo_active");
    active.Stop();
    EXPECT_FALSE(context.GetServiceReference<demo::Word>());
  }
}

TEST_F(Bundles, ActivatorThatThrowsAtTheStartLeavesTheBundleStopped) {
  Bundle active = install("active");
  auto refusal = context.RegisterService<demo::Broken>(std::make_shared<Mark>());
  EXPECT_THAT([&] { active.Start(); }, ThrowsMessage<std::runtime_error>(testing::AllOf(
                                           HasSubstr("demo_active"), HasSubstr("start refused"))));
  EXPECT_EQ(active.GetState(), Bundle::STATE_RESOLVED);
  refusal.Unregister();
  active.Start();
  EXPECT_EQ(active.GetState(), Bundle::STATE_ACTIVE);
}

TEST_F(Bundles, BundleWhoseActivatorThrowsAtTheStopStopsAnyway) {
  Bundle active = install("active");
  active.Start();
  const auto refusal = context.RegisterService<demo::LeftA>(std::make_shared<Mark>());
  EXPECT_THAT([&] { active.Stop(); }, ThrowsMessage<std::runtime_error>(testing::AllOf(
                                          HasSubstr("demo_active"), HasSubstr("stop refused"))));
  EXPECT_EQ(active.GetState(), Bundle::STATE_RESOLVED);
  EXPECT_FALSE(context.GetServiceReference<demo::Word>());
}

TEST_F(Bundles, UninstalledBundleIsGone) {
  Bundle active = install("active");
  active.Start();
  active.Uninstall();
  EXPECT_EQ(active.GetState(), Bundle::STATE_UNINSTALLED);
  EXPECT_FALSE(context.GetServiceReference<demo::Word>());
  EXPECT_THAT(context.GetBundles(pathOf("active")), testing::IsEmpty());
  EXPECT_THROW(active.Start(), std::logic_error);
  Bundle again = install("active");
  EXPECT_NE(again.GetBundleId(), active.GetBundleId());
  again.Start();
  EXPECT_TRUE(context.GetServiceReference<demo::Word>());
}

TEST_F(Bundles, ListenersReceiveTheStatesInOrder) {
  context.AddBundleListener([this](const BundleEvent& event) { types.push_back(event.GetType()); });
  Bundle empty = install("empty");
  empty.Start();
  empty.Stop();
  EXPECT_THAT(types, ElementsAre(BundleEvent::BUNDLE_INSTALLED, BundleEvent::BUNDLE_RESOLVED,
                                 BundleEvent::BUNDLE_STARTING, BundleEvent::BUNDLE_STARTED,
                                 BundleEvent::BUNDLE_STOPPING, BundleEvent::BUNDLE_STOPPED));
}

TEST_F(Bundles, EventNeedsAValidBundleAndOrigin) {
  const Bundle none;
  EXPECT_THROW(BundleEvent(BundleEvent::BUNDLE_STARTED, none), std::invalid_argument);
  EXPECT_THROW(BundleEvent(BundleEvent::BUNDLE_STARTED, framework, none), std::invalid_argument);
  EXPECT_FALSE(BundleEvent());
  EXPECT_EQ(BundleEvent().GetType(), BundleEvent::BUNDLE_UNINSTALLED);
  EXPECT_FALSE(FrameworkEvent());
  EXPECT_EQ(FrameworkEvent().GetType(), FrameworkEvent::FRAMEWORK_ERROR);
}

TEST_F(Bundles, InvalidBundleRefusesEverything) {
  const Bundle none;
  EXPECT_FALSE(none);
  EXPECT_THROW((void)none.GetState(), std::invalid_argument);
  EXPECT_THROW((void)none.GetSymbolicName(), std::invalid_argument);
}

TEST_F(Bundles, ContextOfAStoppedBundleIsNoLongerValid) {
  Bundle empty = install("empty");
  empty.Start();
  BundleContext old = empty.GetBundleContext();
  const auto registration = context.RegisterService<demo::Broken>(std::make_shared<Mark>());
  empty.Stop();
  const auto invalid = ThrowsMessage<std::runtime_error>(kInvalidContext);
  EXPECT_FALSE(old);
  EXPECT_THAT([&] { (void)old.GetBundle(); }, invalid);
  EXPECT_THAT([&] { (void)old.GetBundles(); }, invalid);
  EXPECT_THAT([&] { (void)old.GetServiceReferences<demo::Broken>(); }, invalid);
  EXPECT_THAT([&] { (void)old.GetServiceReference("demo::Broken"); }, invalid);
  EXPECT_THAT([&] { (void)old.GetService(registration.GetReference()); }, invalid);
  EXPECT_THAT([&] { (void)old.RegisterService<demo::Broken>(std::make_shared<Mark>()); }, invalid);
  EXPECT_THAT([&] { (void)old.InstallBundles(pathOf("parts")); }, invalid);
}

TEST_F(Bundles, DefaultConstructedContextIsNotValid) {
  const BundleContext none;
  EXPECT_FALSE(none);
  EXPECT_THAT([&] { (void)none.GetBundles(); }, ThrowsMessage<std::runtime_error>(kInvalidContext));
}

TEST(FrameworkLifecycle, StopsItsBundlesAndStartsAgain) {
  auto framework = cppmicroservices::FrameworkFactory().NewFramework();
  EXPECT_FALSE(framework.GetBundleContext());
  framework.Start();
  EXPECT_EQ(framework.GetState(), Bundle::STATE_ACTIVE);
  auto active =
      framework.GetBundleContext().InstallBundles(std::string(BUNDLE_FOLDER) + "/active.so").at(0);
  active.Start();
  framework.Stop();
  EXPECT_EQ(framework.WaitForStop(std::chrono::milliseconds::zero()).GetType(),
            FrameworkEvent::FRAMEWORK_STOPPED);
  EXPECT_NE(active.GetState(), Bundle::STATE_ACTIVE);
  EXPECT_FALSE(framework.GetBundleContext());
  framework.Start();
  EXPECT_TRUE(framework.GetBundleContext());
  framework.Stop();
  framework.WaitForStop(std::chrono::milliseconds::zero());
}

TEST(FrameworkLifecycle, WaitingEndsAtTheTimeout) {
  auto framework = cppmicroservices::FrameworkFactory().NewFramework();
  framework.Start();
  EXPECT_EQ(framework.WaitForStop(std::chrono::milliseconds(1)).GetType(),
            FrameworkEvent::FRAMEWORK_WAIT_TIMEDOUT);
  framework.Stop();
  framework.WaitForStop(std::chrono::milliseconds::zero());
}

TEST(FrameworkLifecycle, TwoFrameworksAreIndependent) {
  auto one = cppmicroservices::FrameworkFactory().NewFramework();
  auto two = cppmicroservices::FrameworkFactory().NewFramework();
  one.Start();
  two.Start();
  const auto registration =
      one.GetBundleContext().RegisterService<demo::Broken>(std::make_shared<Mark>());
  EXPECT_TRUE(one.GetBundleContext().GetServiceReference<demo::Broken>());
  EXPECT_FALSE(two.GetBundleContext().GetServiceReference<demo::Broken>());
  for (auto* framework : {&one, &two}) {
    framework->Stop();
    framework->WaitForStop(std::chrono::milliseconds::zero());
  }
}

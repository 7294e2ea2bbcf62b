#include <gmock/gmock.h>

#include <sstream>
#include <stdexcept>
#include <string>

#include <cppmicroservices/BundleEvent.h>
#include <cppmicroservices/FrameworkEvent.h>
#include <cppmicroservices/ServiceEvent.h>
#include <cppmicroservices/ServiceException.h>

#include "FrameworkFixture.hpp"

using cppmicroservices::Bundle;
using cppmicroservices::BundleEvent;
using cppmicroservices::FrameworkEvent;
using cppmicroservices::ServiceEvent;
using cppmicroservices::ServiceReferenceU;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class Printing : public FrameworkFixture {};

class Noun : public demo::Word {
 public:
  std::string text() const override { return "noun"; }
};

template <class Value>
std::string printed(const Value& value) {
  std::ostringstream text;
  text << value;
  return text.str();
}

TEST_F(Printing, StatesHaveNames) {
  EXPECT_EQ(printed(Bundle::STATE_UNINSTALLED), "UNINSTALLED");
  EXPECT_EQ(printed(Bundle::STATE_INSTALLED), "INSTALLED");
  EXPECT_EQ(printed(Bundle::STATE_RESOLVED), "RESOLVED");
  EXPECT_EQ(printed(Bundle::STATE_STARTING), "STARTING");
  EXPECT_EQ(printed(Bundle::STATE_STOPPING), "STOPPING");
  EXPECT_EQ(printed(Bundle::STATE_ACTIVE), "ACTIVE");
  EXPECT_EQ(printed(Bundle::State{}), "");
}

TEST_F(Printing, BundleHasIdLocationNameAndState) {
  EXPECT_EQ(printed(static_cast<const Bundle&>(framework)),
            "Bundle[id=0, loc=System Bundle, name=system_bundle, state=ACTIVE]");
  const Bundle empty = install("empty");
  EXPECT_EQ(printed(empty), "Bundle[id=" + std::to_string(empty.GetBundleId()) +
                                ", loc=" + pathOf("empty") + ", name=demo_empty, state=INSTALLED]");
  EXPECT_EQ(printed(&empty), printed(empty));
}

TEST_F(Printing, EventsHaveNames) {
  EXPECT_EQ(printed(BundleEvent::BUNDLE_INSTALLED), "INSTALLED");
  EXPECT_EQ(printed(BundleEvent::BUNDLE_STARTED), "STARTED");
  EXPECT_EQ(printed(BundleEvent::BUNDLE_STOPPED), "STOPPED");
  EXPECT_EQ(printed(BundleEvent::BUNDLE_UNINSTALLED), "UNINSTALLED");
  EXPECT_EQ(printed(BundleEvent::BUNDLE_RESOLVED), "RESOLVED");
  EXPECT_EQ(printed(BundleEvent::BUNDLE_UNRESOLVED), "UNRESOLVED");
  EXPECT_EQ(printed(BundleEvent::BUNDLE_STARTING), "STARTING");
  EXPECT_EQ(printed(BundleEvent::BUNDLE_STOPPING), "STOPPING");
  EXPECT_EQ(printed(BundleEvent::BUNDLE_LAZY_ACTIVATION), "LAZY_ACTIVATION");
  EXPECT_EQ(printed(FrameworkEvent::FRAMEWORK_STOPPED_UPDATE), "STOPPED_UPDATE");
  EXPECT_EQ(printed(FrameworkEvent::FRAMEWORK_STARTED), "STARTED");
  EXPECT_EQ(printed(FrameworkEvent::FRAMEWORK_ERROR), "ERROR");
  EXPECT_EQ(printed(FrameworkEvent::FRAMEWORK_WARNING), "WARNING");
  EXPECT_EQ(printed(FrameworkEvent::FRAMEWORK_INFO), "INFO");
  EXPECT_EQ(printed(FrameworkEvent::FRAMEWORK_STOPPED), "STOPPED");
  EXPECT_EQ(printed(FrameworkEvent::FRAMEWORK_WAIT_TIMEDOUT), "WAIT_TIMEDOUT");
  EXPECT_EQ(printed(ServiceEvent::SERVICE_REGISTERED), "REGISTERED");
  EXPECT_EQ(printed(ServiceEvent::SERVICE_MODIFIED), "MODIFIED");
  EXPECT_EQ(printed(ServiceEvent::SERVICE_UNREGISTERING), "UNREGISTERING");
  EXPECT_EQ(printed(ServiceEvent::SERVICE_MODIFIED_ENDMATCH), "MODIFIED_ENDMATCH");
  EXPECT_THAT(printed(ServiceEvent::Type{}), HasSubstr("nknown"));
  EXPECT_THAT(printed(BundleEvent::Type(3)), HasSubstr("(3)"));
  EXPECT_THAT(printed(FrameworkEvent::Type(3)), HasSubstr("(3)"));
}

TEST_F(Printing, EventsSayWhatTheyAreAbout) {
  EXPECT_EQ(printed(BundleEvent(BundleEvent::BUNDLE_STARTED, framework)),
            "STARTED #0 (system_bundle at System Bundle)");
  EXPECT_EQ(printed(BundleEvent()), "NONE");
  const std::string warning =
      printed(FrameworkEvent(FrameworkEvent::FRAMEWORK_WARNING, framework, "careful",
                             std::make_exception_ptr(std::runtime_error("oops"))));
  EXPECT_THAT(warning, StartsWith("WARNING\n careful\n Bundle[id=0"));
  EXPECT_THAT(warning, HasSubstr("oops"));
  EXPECT_EQ(printed(FrameworkEvent()), "NONE");
  const auto word = context.RegisterService<demo::Word>(std::make_shared<Noun>());
  EXPECT_THAT(printed(ServiceEvent(ServiceEvent::SERVICE_REGISTERED, word.GetReference())),
              testing::AllOf(StartsWith("REGISTERED"), HasSubstr("[demo::Word]")));
  EXPECT_EQ(printed(ServiceEvent()), "NONE");
}

TEST_F(Printing, ReferenceHasBundleAndProperties) {
  auto word = context.RegisterService<demo::Word>(std::make_shared<Noun>(),
                                                  {{"kind", std::string("noun")}});
  EXPECT_THAT(printed(word.GetReference()),
              testing::AllOf(HasSubstr("system_bundle"), HasSubstr("kind=noun"),
                             HasSubstr("objectclass=[demo::Word]")));
  EXPECT_EQ(printed(ServiceReferenceU()), "Invalid service reference");
}

TEST_F(Printing, ExceptionHasItsMessage) {
  EXPECT_THAT(printed(cppmicroservices::ServiceException("no luck")), HasSubstr("no luck"));
}

}  // namespace

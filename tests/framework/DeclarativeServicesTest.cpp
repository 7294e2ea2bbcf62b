#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <cppmicroservices/Constants.h>
#include <cppmicroservices/servicecomponent/ComponentConstants.hpp>

#include "FrameworkFixture.hpp"

using cppmicroservices::Any;
using cppmicroservices::Bundle;
using cppmicroservices::ServiceReference;
using cppmicroservices::ServiceRegistration;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace component_constants = cppmicroservices::service::component::ComponentConstants;

class DeclarativeServices : public FrameworkFixture {
 protected:
  void SetUp() override {
    FrameworkFixture::SetUp();
    runtime = startRuntime();
    parts = install("parts");
  }

  ServiceRegistration<demo::Ledger> registerBook() {
    return context.RegisterService<demo::Ledger>(book);
  }

  template <class Interface>
  std::shared_ptr<Interface> get() {
    return context.GetService(context.GetServiceReference<Interface>());
  }

  template <class Interface>
  std::size_t count() {
    return context.GetServiceReferences<Interface>().size();
  }

  Bundle runtime;
  Bundle parts;
  std::shared_ptr<NoteBook> book = std::make_shared<NoteBook>();
};

TEST_F(DeclarativeServices, RegistersNothingBeforeTheBundleStarts) {
  EXPECT_EQ(count<demo::Word>(), 0U);
}

TEST_F(DeclarativeServices, RegistersComponentsWithoutReferencesAtTheStart) {
  parts.Start();
  const ServiceReference<demo::Word> word = context.GetServiceReference<demo::Word>();
  ASSERT_TRUE(word);
  EXPECT_EQ(context.GetService(word)->text(), "plain");
  EXPECT_EQ(word.GetBundle(), parts);
  EXPECT_FALSE(context.GetServiceReference<demo::Number>());
}

TEST_F(DeclarativeServices, ServiceHasThePropertiesOfTheManifest) {
  parts.Start();
  const ServiceReference<demo::Word> word = context.GetServiceReference<demo::Word>();
  EXPECT_EQ(word.GetProperty("kind"), Any(std::string("plain")));
  EXPECT_EQ(word.GetProperty("rank"), Any(3));
  EXPECT_EQ(word.GetProperty("flag"), Any(true));
  EXPECT_EQ(word.GetProperty("ratio"), Any(1.5));
  EXPECT_EQ(word.GetProperty("list").ToString(), "[a,b]");
}

TEST_F(DeclarativeServices, ServiceHasNameAndIdOfTheComponent) {
  parts.Start();
  const ServiceReference<demo::Word> word = context.GetServiceReference<demo::Word>();
  EXPECT_EQ(word.GetProperty(component_constants::COMPONENT_NAME), Any(std::string("demo::Plain")));
  EXPECT_NE(cppmicroservices::any_cast<unsigned long>(
                word.GetProperty(component_constants::COMPONENT_ID)),
            0U);
  EXPECT_EQ(component_constants::COMPONENT_NAME, "component.name");
  EXPECT_EQ(component_constants::COMPONENT_ID, "component.id");
  EXPECT_EQ(component_constants::SERVICE_COMPONENT, "scr");
}

TEST_F(DeclarativeServices, IdsOfComponentsDiffer) {
  const auto registration = registerBook();
  parts.Start();
  std::vector<unsigned long> ids;
  for (const auto& word : context.GetServiceReferences<demo::Word>()) {
    ids.push_back(cppmicroservices::any_cast<unsigned long>(
        word.GetProperty(component_constants::COMPONENT_ID)));
  }
  ASSERT_THAT(ids, SizeIs(2));
  EXPECT_NE(ids[0], ids[1]);
}

TEST_F(DeclarativeServices, ImplementationIsCreatedAtTheFirstUse) {
  const auto registration = registerBook();
  parts.Start();
  EXPECT_THAT(book->take(), IsEmpty());
  const ServiceReference<demo::Number> number = context.GetServiceReference<demo::Number>();
  EXPECT_THAT(book->take(), IsEmpty());
  EXPECT_EQ(context.GetService(number)->value(), 2);
  EXPECT_THAT(book->take(), ElementsAre("+pair"));
}

TEST_F(DeclarativeServices, ImplementationStaysWhenTheServiceIsNotInUse) {
  const auto registration = registerBook();
  parts.Start();
  const auto number = context.GetServiceReference<demo::Number>();
  const auto* const first = context.GetService(number).get();
  EXPECT_EQ(context.GetService(number).get(), first);
  EXPECT_THAT(book->take(), ElementsAre("+pair"));
}

TEST_F(DeclarativeServices, AllBundlesShareOneImplementation) {
  const auto registration = registerBook();
  parts.Start();
  const auto here = get<demo::First>();
  auto other = parts.GetBundleContext();
  EXPECT_EQ(other.GetService(other.GetServiceReference<demo::First>()), here);
}

TEST_F(DeclarativeServices, InterfacesOfAComponentAreOneObject) {
  const auto registration = registerBook();
  parts.Start();
  const auto number = get<demo::Number>();
  const auto words = context.GetServiceReferences<demo::Word>("(kind=pair)");
  ASSERT_THAT(words, SizeIs(1));
  EXPECT_EQ(dynamic_cast<void*>(context.GetService(words[0]).get()),
            dynamic_cast<void*>(number.get()));
}

TEST_F(DeclarativeServices, ChainIsRegisteredWhenItsLastServiceIsRegistered) {
  parts.Start();
  EXPECT_EQ(count<demo::Third>(), 0U);
  const auto registration = registerBook();
  EXPECT_EQ(count<demo::Third>(), 1U);
}

TEST_F(DeclarativeServices, ChainIsCreatedFromItsFirstComponentOn) {
  const auto registration = registerBook();
  parts.Start();
  EXPECT_EQ(get<demo::Third>()->path(), "123");
  EXPECT_THAT(book->take(), ElementsAre("+first", "+second", "+third"));
}

TEST_F(DeclarativeServices, ChainIsUnregisteredWhenAServiceGoesAway) {
  auto registration = registerBook();
  parts.Start();
  EXPECT_EQ(get<demo::Third>()->path(), "123");
  book->take();
  registration.Unregister();
  EXPECT_FALSE(context.GetServiceReference<demo::Third>());
  EXPECT_FALSE(context.GetServiceReference<demo::First>());
  EXPECT_THAT(book->take(), testing::UnorderedElementsAre("-third", "-second", "-first"));
}

TEST_F(DeclarativeServices, ReferenceIsReleasedWhenItsServiceGoesAway) {
  auto registration = registerBook();
  parts.Start();
  EXPECT_NE(get<demo::Third>(), nullptr);
  registration.Unregister();
  registration = nullptr;
  EXPECT_EQ(book.use_count(), 1);
}

TEST_F(DeclarativeServices, ImplementationInUseOutlivesItsService) {
  auto registration = registerBook();
  parts.Start();
  auto third = get<demo::Third>();
  book->take();
  registration.Unregister();
  EXPECT_EQ(third->path(), "123");
  EXPECT_THAT(book->take(), IsEmpty());
  third.reset();
  EXPECT_THAT(book->take(), ElementsAre("-third", "-second", "-first"));
}

TEST_F(DeclarativeServices, ComponentIsRegisteredAgainWithItsService) {
  auto registration = registerBook();
  parts.Start();
  EXPECT_NE(get<demo::Number>(), nullptr);
  registration.Unregister();
  EXPECT_EQ(count<demo::Number>(), 0U);
  registration = registerBook();
  book->take();
  EXPECT_NE(get<demo::Number>(), nullptr);
  EXPECT_THAT(book->take(), ElementsAre("+pair"));
}

TEST_F(DeclarativeServices, BoundServiceIsNotReplacedByAHigherRankedOne) {
  const auto registration = registerBook();
  parts.Start();
  const auto number = get<demo::Number>();
  const auto better = std::make_shared<NoteBook>();
  const auto other = context.RegisterService<demo::Ledger>(
      better, {{cppmicroservices::Constants::SERVICE_RANKING, 10}});
  EXPECT_EQ(get<demo::Number>(), number);
  EXPECT_THAT(better->take(), IsEmpty());
}

TEST_F(DeclarativeServices, ReferenceIsBoundToTheHighestRanking) {
  const auto plain = registerBook();
  const auto better = std::make_shared<NoteBook>();
  const auto other = context.RegisterService<demo::Ledger>(
      better, {{cppmicroservices::Constants::SERVICE_RANKING, 10}});
  parts.Start();
  EXPECT_NE(get<demo::Number>(), nullptr);
  EXPECT_THAT(book->take(), IsEmpty());
  EXPECT_THAT(better->take(), ElementsAre("+pair"));
}

TEST_F(DeclarativeServices, AnotherServiceReplacesOneThatGoesAway) {
  auto registration = registerBook();
  const auto second = std::make_shared<NoteBook>();
  const auto other = context.RegisterService<demo::Ledger>(second);
  parts.Start();
  EXPECT_NE(get<demo::Number>(), nullptr);
  registration.Unregister();
  EXPECT_THAT(book->take(), ElementsAre("+pair", "-pair"));
  EXPECT_NE(get<demo::Number>(), nullptr);
  EXPECT_THAT(second->take(), ElementsAre("+pair"));
}

TEST_F(DeclarativeServices, StoppedBundleUnregistersItsComponents) {
  const auto registration = registerBook();
  parts.Start();
  auto number = get<demo::Number>();
  parts.Stop();
  EXPECT_EQ(count<demo::Word>(), 0U);
  EXPECT_EQ(number->value(), 2);
  book->take();
  number.reset();
  EXPECT_THAT(book->take(), ElementsAre("-pair"));
}

TEST_F(DeclarativeServices, BundleMayStartAgain) {
  const auto registration = registerBook();
  for (int round = 0; round < 3; ++round) {
    parts.Start();
    EXPECT_EQ(get<demo::Third>()->path(), "123");
    parts.Stop();
    EXPECT_EQ(count<demo::Third>(), 0U);
    EXPECT_THAT(book->take(), SizeIs(6));
  }
}

TEST_F(DeclarativeServices, StoppedRuntimeUnregistersAllComponents) {
  const auto registration = registerBook();
  parts.Start();
  EXPECT_NE(get<demo::Number>(), nullptr);
  runtime.Stop();
  EXPECT_EQ(count<demo::Word>(), 0U);
  EXPECT_THAT(book->take(), ElementsAre("+pair", "-pair"));
  EXPECT_EQ(parts.GetState(), Bundle::STATE_ACTIVE);
}

TEST_F(DeclarativeServices, RuntimeFindsBundlesThatAreAlreadyActive) {
  const auto registration = registerBook();
  runtime.Stop();
  parts.Start();
  EXPECT_EQ(count<demo::Word>(), 0U);
  runtime.Start();
  EXPECT_EQ(count<demo::Word>(), 2U);
  EXPECT_EQ(get<demo::Third>()->path(), "123");
}

// CppMicroServices 3.8.12 does not pass on the text of the exception.
constexpr const char* kBrokenProblem =
    EMBEDDED_FRAMEWORK ? "no luck" : "ServiceFactory returned an empty or nullptr interface map";

TEST_F(DeclarativeServices, ThrowingConstructorIsReportedAndDoesNotAffectOthers) {
  parts.Start();
  EXPECT_THAT(takeProblems(), IsEmpty());
  EXPECT_EQ(get<demo::Broken>(), nullptr);
  EXPECT_THAT(takeProblems(), Contains(HasSubstr(kBrokenProblem)));
  EXPECT_EQ(get<demo::Word>()->text(), "plain");
}

TEST_F(DeclarativeServices, DependentOfABrokenComponentIsNotCreated) {
  parts.Start();
  EXPECT_EQ(get<demo::NeedsBroken>(), nullptr);
  EXPECT_THAT(takeProblems(), Contains(HasSubstr(kBrokenProblem)));
}

TEST_F(DeclarativeServices, CreatingABrokenComponentIsRetried) {
  parts.Start();
  EXPECT_EQ(get<demo::Broken>(), nullptr);
  takeProblems();
  EXPECT_EQ(get<demo::Broken>(), nullptr);
  EXPECT_THAT(takeProblems(), Contains(HasSubstr(kBrokenProblem)));
}

TEST_F(DeclarativeServices, ServiceIsCreatedOnceForSeveralThreads) {
  const auto registration = registerBook();
  parts.Start();
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 8; ++thread) {
    threads.emplace_back([this] { EXPECT_EQ(get<demo::Third>()->path(), "123"); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(book->take(), ElementsAre("+first", "+second", "+third"));
}

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "document/kdzero/TesseraDocument.hpp"
#include "quenlith/build/markup/code/CodeSnippetParserImpl.hpp"
#include "quenlith/build/markup/code/LineNodeParserService.hpp"
#include "quenlith/build/markup/code/TaskSnippetParserImpl.hpp"
#include "quenlith/build/markup/services/ProviderFixture.hpp"
#include "support/LogCollector.hpp"

// A parse whose lookup of services is disturbed, in each of its steps.

namespace quenlith::test {
namespace {

using build::markup::Snippet;
using build::markup::code::CodeSnippetParserImpl;
using build::markup::code::LineNodeParserService;
using build::markup::code::TaskSnippetParserImpl;
using build::markup::services::ParserServicesProviderImpl;
using document::kdzero::TesseraDocument;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;

using Steps = std::vector<std::string>;
const Steps kLookup = {"contributor 1",
                       "contributor 2",
                       "element parser 1",
                       "element parser 2",
                       "Found 2 non default code element parsers",
                       "default parser"};
const std::size_t kLastContributor = 1;
const std::size_t kFoundRecord = 4;
const std::size_t kDefaultParser = 5;

enum class Parser { kLineService, kDefault, kTask };
constexpr Parser kParsers[] = {Parser::kLineService, Parser::kDefault, Parser::kTask};

class ProviderFault : public ProviderFixture {
 protected:
  ProviderFault() { registerServices(); }
  ~ProviderFault() override { std::printf("%zu steps were disturbed\n", disturbedSteps); }

  void registerServices() {
    for (std::size_t number : {0U, 1U}) add(number, &makeContributor);
    for (std::size_t number : {2U, 3U}) add(number, &makeElementParser);
    add(kDefaultParser, &makeElementParser, prioritised("default"));
  }

  /// Registers the factory of step `number` of a lookup.
  template <class Service>
  void add(std::size_t number, std::shared_ptr<Service> (*make)(),
           const ServiceProperties& properties = {}) {
    const auto create = [this, number, make] {
      takeStep(kLookup[number]);
      return cppmicroservices::MakeInterfaceMap<Service>(make());
    };
    addFactory<Service>(create, properties);
  }

  /// Begins with a new provider and a new document.
  void begin() {
    shared = std::make_shared<ParserServicesProviderImpl>();
    document = std::make_shared<TesseraDocument>();
  }

  /// Parses a line while `action`, unless it is empty, is called in the step of this number.
  /// Returns the text of the exception, "" if there is none.
  std::string parse(Parser parser, std::size_t number = 0, std::function<void()> action = {}) {
    steps.clear();
    disturbedStep = number;
    disturbance = std::move(action);
    const std::uint64_t before = document->getNumberOfChildren();
    std::string failure = failureOf([&] { parseWith(parser); });
    disturbance = nullptr;
    EXPECT_EQ(document->getNumberOfChildren(), before + (failure.empty() ? 1 : 0));
    EXPECT_EQ(document.use_count(), 1);
    EXPECT_EQ(shared.use_count(), 1);
    return failure;
  }

  /// Returns the number of steps that come before the lookup.
  std::size_t stepsBeforeLookup(Parser parser) {
    begin();
    EXPECT_EQ(parse(parser), "");
    EXPECT_GE(steps.size(), kLookup.size());
    const auto first = steps.end() - static_cast<std::ptrdiff_t>(kLookup.size());
    EXPECT_EQ(Steps(first, steps.end()), kLookup);
    return static_cast<std::size_t>(first - steps.begin());
  }

  /// Returns the steps of the lookup in the last parse.
  Steps lookup() const {
    Steps found;
    std::ranges::copy_if(steps, std::back_inserter(found),
                         [](const std::string& step) { return std::ranges::count(kLookup, step); });
    return found;
  }

  std::shared_ptr<ParserServicesProviderImpl> shared;
  std::shared_ptr<TesseraDocument> document;

 private:
  static std::string failureOf(const std::function<void()>& call) {
    try {
      call();
      return "";
    } catch (const std::runtime_error& error) {
      return error.what();
    } catch (const ServiceFailure&) {
      return "thrown by the receiver";
    }
  }

  void parseWith(Parser parser) {
    const Snippet snippet{u"x", {}, {}};
    if (parser == Parser::kLineService) {
      LineNodeParserService(shared).parseLine(document, snippet, {});
    } else if (parser == Parser::kDefault) {
      CodeSnippetParserImpl(shared).parse(document, snippet);
    } else {
      TaskSnippetParserImpl(std::make_shared<FakeAppendix>(), shared).parse(document, snippet);
    }
  }

  void takeStep(const std::string& name) {
    steps.push_back(name);
    if (!disturbance || steps.size() - 1 != disturbedStep) return;
    ++disturbedSteps;
    disturbance();
  }

  Steps steps;
  std::size_t disturbedStep = 0;
  std::function<void()> disturbance;
  std::size_t disturbedSteps = 0;
  LogCollector collector{
      shared::logging::kTraceSeverity,
      [this](std::uint32_t, std::string_view message) { takeStep(std::string(message)); }};
};

Steps lookupFrom(std::size_t number) {
  return {kLookup.begin() + static_cast<std::ptrdiff_t>(number), kLookup.end()};
}

TEST_F(ProviderFault, AFrameworkThatStopsInAnyStepOfALookupEndsTheParse) {
  for (const Parser parser : kParsers) {
    const std::size_t before = stepsBeforeLookup(parser);
    for (std::size_t number = 0; number < before + kDefaultParser; ++number) {
      SCOPED_TRACE(number);
      begin();
      EXPECT_EQ(parse(parser, number, [this] { stop(); }), "The bundle context is no longer valid");
      framework->Start();
      registerServices();
      EXPECT_EQ(parse(parser), "");
      // A list that was complete is kept.
      const bool hasContributors = number >= before + kLastContributor;
      EXPECT_EQ(lookup(), lookupFrom(hasContributors ? kLastContributor + 1 : 0));
    }
  }
}

TEST_F(ProviderFault, AFrameworkThatStopsWhenEveryServiceIsFoundDoesNotEndTheParse) {
  const std::size_t before = stepsBeforeLookup(Parser::kDefault);
  begin();
  const std::string failure = parse(Parser::kDefault, before + kDefaultParser, [this] { stop(); });
  // The framework decides whether the bundle gets a service that was made while it stopped.
  if (!failure.empty()) {
    EXPECT_THAT(failure, HasSubstr("no default code element parser"));
  }
  EXPECT_EQ(parse(Parser::kDefault), failure);
  EXPECT_THAT(lookup(), IsEmpty());
}

TEST_F(ProviderFault, AReceiverOfRecordsThatThrowsEndsTheParse) {
  for (const Parser parser : kParsers) {
    const std::size_t before = stepsBeforeLookup(parser);
    for (std::size_t number = 0; number < before; ++number) {
      SCOPED_TRACE(number);
      begin();
      EXPECT_EQ(parse(parser, number, [] { throw ServiceFailure(); }), "thrown by the receiver");
      EXPECT_THAT(lookup(), IsEmpty());
      EXPECT_EQ(parse(parser), "");
      EXPECT_EQ(lookup(), kLookup);
    }
    begin();
    EXPECT_EQ(parse(parser, before + kFoundRecord, [] { throw ServiceFailure(); }),
              "thrown by the receiver");
    EXPECT_EQ(parse(parser), "");
    EXPECT_EQ(lookup(), lookupFrom(kLastContributor + 1));
  }
}

TEST_F(ProviderFault, AServiceWhoseFactoryThrowsIsLeftOut) {
  const std::size_t before = stepsBeforeLookup(Parser::kDefault);
  const auto fail = [] { throw std::runtime_error("a factory failed"); };
  for (std::size_t number = 0; number < kFoundRecord; ++number) {
    SCOPED_TRACE(number);
    begin();
    EXPECT_EQ(parse(Parser::kDefault, before + number, fail), "");
    EXPECT_EQ(shared->getLineContributorDataParsers().size(), number <= kLastContributor ? 1U : 2U);
    EXPECT_EQ(shared->getCodeElementParsers().size(), number <= kLastContributor ? 3U : 2U);
  }
  begin();
  const std::string failure = parse(Parser::kDefault, before + kDefaultParser, fail);
  EXPECT_THAT(failure, HasSubstr("no default code element parser"));
  EXPECT_EQ(parse(Parser::kDefault), failure);
  EXPECT_THAT(lookup(), IsEmpty());
}

}  // namespace
}  // namespace quenlith::test

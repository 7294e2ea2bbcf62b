#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

#include "fakes/ParserFakes.hpp"
#include "quenlith/build/markup/code/LineNodeParserService.hpp"
#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"
#include "quenlith/build/markup/code/TaskSnippetParserImpl.hpp"
#include "support/CountedWork.hpp"

namespace {

using document::kdzero::TesseraDocument;
using fl::i18n::ustring;
using quenlith::build::markup::ParseResult;
using quenlith::build::markup::code::LineNodeParserService;
using quenlith::build::markup::code::PlainTextNodeParserImpl;
using quenlith::build::markup::code::TaskSnippetParserImpl;
using quenlith::test::countedWork;
using quenlith::test::FakeAppendix;
using quenlith::test::FakeContributor;
using quenlith::test::FakeProvider;

ustring number(std::size_t value) {
  const std::string text = std::to_string(value);
  return {text.begin(), text.end()};
}

/// Counts the basic blocks that the parsers and the model run.
class ParserCost : public testing::Test {
 protected:
  ParserCost() { provider->elementParsers = {std::make_shared<PlainTextNodeParserImpl>()}; }

  std::uint64_t workOfLine(const ustring& line) {
    const auto document = std::make_shared<TesseraDocument>();
    const std::uint64_t before = countedWork();
    LineNodeParserService(provider).parseLine(document, {line, {}, {}}, {});
    return countedWork() - before;
  }

  /// Expects the line `make(n)` to cost less than 15 times as much for ten times as many markers,
  /// which leaves room for sorting them.
  template <typename Make>
  void expectNearlyLinear(const Make& make) {
    constexpr std::size_t kFew = 10000;
    workOfLine(make(10));
    const std::uint64_t few = workOfLine(make(kFew));
    ASSERT_GT(few, kFew);
    EXPECT_LT(workOfLine(make(10 * kFew)), 15 * few);
  }

  std::shared_ptr<FakeProvider> provider = std::make_shared<FakeProvider>();
  std::shared_ptr<FakeAppendix> appendix = std::make_shared<FakeAppendix>();
};

TEST_F(ParserCost, OfALineOfMarkersIsNearlyLinear) {
  expectNearlyLinear([](std::size_t n) {
    ustring line;
    for (std::size_t i = 0; i < n; ++i) line += u"x # <@output#o>";
    return line;
  });
}

TEST_F(ParserCost, OfNestedRangesIsNearlyLinear) {
  expectNearlyLinear([](std::size_t n) {
    ustring line(2 * n + 1, u'x');
    for (std::size_t i = 0; i < n; ++i) {
      line += u"#<@output[" + number(i) + u"," + number(2 * n + 1 - i) + u"]>";
    }
    return line;
  });
}

TEST_F(ParserCost, OfLongRangesAfterShortOnesIsNearlyLinear) {
  expectNearlyLinear([](std::size_t n) {
    ustring line(n + 1, u'x');
    for (std::size_t i = 0; i < n; ++i) {
      line += u"#<@output[" + number(n - i - 1) + u"," + number(n + 1) + u"]>";
    }
    return line;
  });
}

TEST_F(ParserCost, OfUnusableRangesIsNearlyLinear) {
  expectNearlyLinear([](std::size_t n) {
    ustring line;
    for (std::size_t i = 0; i < n; ++i) line += u"#<@output#" + number(i) + u" [3,2]>";
    return line;
  });
}

TEST_F(ParserCost, OfContributorDataIsNearlyLinear) {
  provider->contributors = {std::make_shared<FakeContributor>(u"c", u"output")};
  expectNearlyLinear([](std::size_t n) {
    ustring line;
    for (std::size_t i = 0; i < n; ++i) line += u"#<@output>";
    return line;
  });
}

TEST_F(ParserCost, OfEscapedLeadersIsNearlyLinear) {
  expectNearlyLinear([](std::size_t n) {
    ustring line;
    for (std::size_t i = 0; i < n; ++i) line += u"%%\\x#<@output>";
    return line;
  });
}

TEST_F(ParserCost, OfATaskLineDoesNotGrowWithTheIdsThatOverlapped) {
  constexpr std::size_t kOverlaps = 50000;
  TaskSnippetParserImpl parser(appendix, provider);
  const auto document = std::make_shared<TesseraDocument>();
  const auto workOf = [&](const ustring& line, std::uint8_t kind, const ustring& block) {
    const std::uint64_t before = countedWork();
    parser.parse(document, {line, {0, kind}, block});
    return countedWork() - before;
  };
  const ustring opening = u"# <@task#open>";
  workOf(opening, 0, opening + u"\n" + opening);
  std::uint64_t first = 0;
  std::uint64_t last = 0;
  for (std::size_t i = 0; i < kOverlaps; ++i) {
    last = workOf(u"# <@task#t" + number(10000 + i) + u">", 3, {});
    if (i == 100) first = last;
  }
  // The last line adds its id to the set of all earlier ones.
  EXPECT_LT(last, 2 * first);
  // A pairing test looks the id up among them.
  const ustring block = u"# <@task#t10001>\n# <@task#t10001>";
  workOf(u"# <@task#t10001>", 0, block);
  EXPECT_LT(workOf(u"# <@task#t10001>", 0, block), 4 * first);
}

TEST_F(ParserCost, OfAPairingTestDoesNotGrowWithTheTasksOfTheBlock) {
  const auto workOfTasks = [this](std::size_t tasks) {
    std::vector<ustring> lines;
    ustring block;
    for (std::size_t i = 0; i < tasks; ++i) {
      lines.push_back(u"# <@task#t" + number(10000 + i) + u">");
      for (int marker = 0; marker < 2; ++marker) block += lines.back() + u"\n";
    }
    TaskSnippetParserImpl parser(appendix, provider);
    const auto document = std::make_shared<TesseraDocument>();
    const std::uint64_t before = countedWork();
    for (const ustring& line : lines) {
      parser.parse(document, {line, {0, 0}, block});
      parser.parse(document, {line, {0, 3}, block});
    }
    return countedWork() - before;
  };
  workOfTasks(1);
  const std::uint64_t few = workOfTasks(300);
  EXPECT_LT(workOfTasks(3000), 12 * few);
}

}  // namespace

#include "tessera/session/SnippetSession.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/uuid/uuid.hpp>
#include <stdexcept>

#include "apps/tessera/support/FakeParser.hpp"
#include "document/kdzero/LineNode.hpp"
#include "quenlith/shared/logging/trace.hpp"

namespace {

using quenlith::build::markup::ParseResult;
using quenlith::build::markup::Snippet;
using quenlith::shared::logging::trace;
using tessera::session::LineTable;
using tessera::session::LogCollector;
using tessera::session::NamedParser;
using tessera::session::ParsedSnippet;
using tessera::session::ParserError;
using tessera::session::SnippetSession;
using testing::ElementsAre;

class SnippetSessionTest : public testing::Test {
 protected:
  SnippetSession makeSession(LogCollector* log = nullptr) {
    return SnippetSession({{"first", first, "one"}, {"", last, "two"}}, log, nullptr);
  }

  std::shared_ptr<FakeParser> first = std::make_shared<FakeParser>();
  std::shared_ptr<FakeParser> last = std::make_shared<FakeParser>();
};

TEST_F(SnippetSessionTest, TheFirstParserThatAcceptsParsesTheLine) {
  first->accepts = [](const Snippet& snippet) { return snippet.text == u"b"; };
  const ParsedSnippet parsed = makeSession().parse({u"a\nb\nc", true});
  ASSERT_EQ(first->parsed.size(), 1u);
  EXPECT_EQ(first->parsed[0].text, u"b");
  EXPECT_EQ(first->asked.size(), 3u);
  // The later parser is not asked about a line that the first one accepts.
  ASSERT_EQ(last->asked.size(), 2u);
  EXPECT_EQ(last->asked[1].text, u"c");
  LineTable::Cursor cursor(parsed.lines);
  for (const std::size_t parser : {1u, 0u, 1u}) {
    ASSERT_TRUE(cursor.advance());
    EXPECT_EQ(cursor.line().outcome.parser, parser);
  }
}

TEST_F(SnippetSessionTest, TheTypeOfAResultIsPassedWithTheNextLine) {
  std::uint8_t kind = 0;
  first->parses = [&](auto& document, const Snippet&) {
    FakeParser::addNode(document);
    ParseResult result;
    result.type = {7, ++kind};
    return result;
  };
  makeSession().parse({u"a\nb\nc", true});
  ASSERT_EQ(first->asked.size(), 3u);
  EXPECT_EQ(first->asked[0].type.kind, 0);
  EXPECT_EQ(first->asked[0].type.group, 0);
  EXPECT_EQ(first->asked[1].type.kind, 1);
  EXPECT_EQ(first->parsed[2].type.kind, 2);
  EXPECT_EQ(first->parsed[2].type.group, 7);
}

TEST_F(SnippetSessionTest, EveryLineIsPassedWithTheWholeCode) {
  const ParsedSnippet parsed = makeSession().parse({u"a\n\nb", true});
  ASSERT_EQ(first->parsed.size(), 3u);
  EXPECT_EQ(first->parsed[1].text, u"");
  for (const Snippet& snippet : first->parsed) EXPECT_EQ(snippet.auxiliaryText, u"a\n\nb");
  EXPECT_EQ(parsed.code.text, u"a\n\nb");
}

TEST_F(SnippetSessionTest, EachBlockHasItsOwnVersion) {
  SnippetSession session = makeSession();
  session.parse({u"a\nb", true});
  session.parse({u"c", true});
  makeSession().parse({u"d", true});
  ASSERT_EQ(first->parsed.size(), 4u);
  const auto versionOf = [&](std::size_t line) { return first->parsed[line].blockVersion; };
  EXPECT_NE(versionOf(0), 0u);
  EXPECT_EQ(versionOf(1), versionOf(0));
  EXPECT_EQ(first->asked[1].blockVersion, versionOf(0));
  EXPECT_NE(versionOf(2), versionOf(0));
  EXPECT_NE(versionOf(3), versionOf(2));
  EXPECT_NE(versionOf(3), versionOf(0));
}

TEST_F(SnippetSessionTest, AllParsersAreResetBeforeEachSnippet) {
  int parsedBefore = 0;
  last->onReset = [&] { parsedBefore = static_cast<int>(first->parsed.size()); };
  SnippetSession session = makeSession();
  session.parse({u"a", true});
  EXPECT_EQ(parsedBefore, 0);
  session.parse({u"b", true});
  EXPECT_EQ(parsedBefore, 1);
  EXPECT_EQ(first->resets, 2);
  EXPECT_EQ(last->resets, 2);
}

TEST_F(SnippetSessionTest, ASnippetWithoutLinesHasAnEmptyDocument) {
  const ParsedSnippet parsed = makeSession().parse({u"", false});
  EXPECT_EQ(parsed.document->getNumberOfChildren(), 0u);
  EXPECT_TRUE(first->asked.empty());
  EXPECT_EQ(first->resets, 1);
}

TEST_F(SnippetSessionTest, EachLineHasTheNodesThatItAdded) {
  first->parses = [](auto& document, const Snippet& snippet) {
    for (const char16_t unit : snippet.text) {
      if (unit == u'n') FakeParser::addNode(document);
    }
    return ParseResult();
  };
  const ParsedSnippet parsed = makeSession().parse({u"nn\nn\nnnn", true});
  LineTable::Cursor cursor(parsed.lines);
  for (const auto& [from, count] : {std::pair(0u, 2u), std::pair(2u, 1u), std::pair(3u, 3u)}) {
    ASSERT_TRUE(cursor.advance());
    EXPECT_EQ(cursor.line().firstNode, from);
    EXPECT_EQ(cursor.line().outcome.nodeCount, count);
  }
}

TEST_F(SnippetSessionTest, AParserThatThrowsEndsTheSnippet) {
  last->parses = [](auto&, const Snippet&) -> ParseResult { throw std::runtime_error("broken"); };
  first->accepts = [](const Snippet& snippet) { return snippet.text != u"b"; };
  SnippetSession session = makeSession();
  try {
    session.parse({u"a\nb\nc", true});
    ADD_FAILURE();
  } catch (const ParserError& error) {
    EXPECT_EQ(error.line(), 2u);
    EXPECT_STREQ(error.what(), "threw: broken");
    EXPECT_EQ(error.parser(), "a parser of the bundle two");
  }
  EXPECT_EQ(first->parsed.size(), 1u);
  // The next snippet is parsed as if nothing had happened.
  EXPECT_NO_THROW(session.parse({u"a", true}));
  EXPECT_EQ(first->resets, 2);
}

TEST_F(SnippetSessionTest, ExceptionsOfAnyTypeFromAnyCallEndTheSnippet) {
  first->accepts = [](const Snippet&) -> bool { throw 7; };
  try {
    makeSession().parse({u"a", true});
    ADD_FAILURE();
  } catch (const ParserError& error) {
    EXPECT_EQ(error.line(), 1u);
    EXPECT_STREQ(error.what(), "threw: an exception of a kind that is not known");
    EXPECT_EQ(error.parser(), "the parser first of the bundle one");
  }
  first->onReset = [] { throw std::runtime_error("no reset"); };
  try {
    makeSession().parse({u"a", true});
    ADD_FAILURE();
  } catch (const ParserError& error) {
    EXPECT_EQ(error.line(), 0u);
    EXPECT_STREQ(error.what(), "threw: no reset");
    EXPECT_EQ(error.parser(), "the parser first of the bundle one");
  }
}

TEST_F(SnippetSessionTest, ALineThatNoParserAcceptsIsAnError) {
  first->accepts = last->accepts = [](const Snippet&) { return false; };
  try {
    makeSession().parse({u"a", true});
    ADD_FAILURE();
  } catch (const ParserError& error) {
    EXPECT_STREQ(error.what(), "no snippet parser accepts the line");
    EXPECT_EQ(error.parser(), "");
  }
}

TEST_F(SnippetSessionTest, AParserThatAddsNoNodeForALineIsNamed) {
  first->accepts = [](const Snippet& snippet) { return snippet.text == u"b"; };
  first->parses = [](auto&, const Snippet&) { return ParseResult(); };
  SnippetSession session = makeSession();
  try {
    session.parse({u"a\nb\nc", true});
    ADD_FAILURE() << "the line was lost";
  } catch (const ParserError& error) {
    EXPECT_EQ(error.line(), 2u);
    EXPECT_STREQ(error.what(), "accepted the line and added no node for it");
    EXPECT_EQ(error.parser(), "the parser first of the bundle one");
  }
  EXPECT_EQ(last->parsed.size(), 1u);
}

TEST_F(SnippetSessionTest, RecordsOfALineAreThoseOfItsCallsInOrder) {
  first->accepts = [](const Snippet&) {
    trace("first asked");
    return false;
  };
  last->accepts = [](const Snippet&) {
    trace("last asked");
    return true;
  };
  last->parses = [](auto& document, const Snippet&) {
    FakeParser::addNode(document);
    trace("parsed");
    return ParseResult();
  };
  first->onReset = [] { trace("reset"); };
  LogCollector log;
  const ParsedSnippet parsed = makeSession(&log).parse({u"a\nb", true});
  LineTable::Cursor cursor(parsed.lines);
  for (int line = 1; line <= 2; ++line) {
    ASSERT_TRUE(cursor.advance()) << line;
    EXPECT_THAT(cursor.line().outcome.log, ElementsAre("first asked", "last asked", "parsed"));
  }
  EXPECT_FALSE(cursor.advance());
}

TEST(LogCollector, EnablesTheSeverityWhileItLives) {
  using quenlith::shared::logging::getLogger;
  getLogger().setEnabledSeverities(1);
  {
    LogCollector log;
    trace("seen");
    getLogger().emit(1, std::string_view("of another severity"));
    EXPECT_THAT(log.take(), ElementsAre("seen"));
    EXPECT_TRUE(log.take().empty());
  }
  EXPECT_EQ(getLogger().enabledSeverities(), 1u);
  getLogger().setEnabledSeverities(0);
}

}  // namespace

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "contract/FakeServices.hpp"
#include "contract/RecordedLog.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "quenlith/build/markup/Snippet.hpp"
#include "quenlith/build/markup/code/CodeSnippetParserImpl.hpp"
#include "quenlith/build/markup/code/TaskSnippetParserImpl.hpp"

namespace {

using contract::ElementContributor;
using contract::FakeAppendix;
using contract::FakeProvider;
using contract::RecordedLog;
using document::kdzero::TesseraDocument;
using fl::i18n::ustring;
using quenlith::build::markup::Snippet;
using quenlith::build::markup::code::CodeSnippetParserImpl;
using quenlith::build::markup::code::TaskSnippetParserImpl;
using quenlith::syntax::Marker;
using Messages = std::vector<std::string>;

const ustring kTaskBlock = u"#<@task#t1>\n#<@task#t1>";

class ParserMessagesContract : public testing::Test {
 protected:
  Messages ofTaskLine(const ustring& line, std::uint8_t kind, const ustring& block) {
    log.clear();
    task.parse(document, Snippet{line, {0, kind}, block});
    return log.messages();
  }

  RecordedLog log;
  std::shared_ptr<FakeProvider> provider = std::make_shared<FakeProvider>();
  std::shared_ptr<FakeAppendix> appendix = std::make_shared<FakeAppendix>();
  std::shared_ptr<TesseraDocument> document = std::make_shared<TesseraDocument>();
  CodeSnippetParserImpl code{provider};
  TaskSnippetParserImpl task{appendix, provider};
};

TEST_F(ParserMessagesContract, TheDefaultParserTracesItsCalls) {
  code.canParse(Snippet{u"x", {0, 0}, u""});
  code.parse(document, Snippet{u"x", {0, 0}, u""});
  EXPECT_EQ(log.messages(),
            (Messages{"Checking the default parser", "Parsing using the default parser",
                      "In LineNodeParserService"}));
  for (const contract::LogRecord& record : log.records()) EXPECT_EQ(record.severity, 8U);
}

TEST_F(ParserMessagesContract, ALineTracesAnchorContributorAndPosition) {
  provider->contributors = {std::make_shared<ElementContributor>(u"text", u"feature")};
  code.parse(document, Snippet{u"x #<@text:anchor#a [1,1]>", {0, 0}, u""});
  EXPECT_EQ(
      log.messages(),
      (Messages{"Parsing using the default parser", "In LineNodeParserService",
                "Building a bad position parser failure", "Setting anchor id on the line node",
                "Found an applicable line contributor data parser"}));
}

TEST_F(ParserMessagesContract, AnOpeningLineTracesTheHeader) {
  task.canParse(Snippet{u"x", {0, 0}, u""});
  EXPECT_EQ(log.messages(), Messages{"Checking if parse as task"});
  appendix->addEntry(Marker(u"#<@task#t1 {\"uniqueId\":\"u1\"}>"));
  EXPECT_EQ(
      ofTaskLine(u"#<@task#t1> #<@text:anchor#a>", 0, kTaskBlock),
      (Messages{"Parsing using the task parser", "Task marker found for first time",
                "Adding task marker to the list of seen markers", "Parsing live task appendix data",
                "finding Appendix Entry", "Adding Header node to tessera doc", "u1",
                "Found an anchor marker for the task",
                "Adding text marker to the list of seen markers", "In LineNodeParserService"}));
}

TEST_F(ParserMessagesContract, AClosingLineTracesTheCount) {
  ofTaskLine(u"#<@task#t1>", 0, kTaskBlock);
  const Messages closing = ofTaskLine(u"#<@task#t1>", 3, kTaskBlock);
  // The third record is some text field of the task's data.
  ASSERT_EQ(closing.size(), 4U);
  EXPECT_EQ(closing[0], "Parsing using the task parser");
  EXPECT_EQ(closing[1], "End of task found, cleaning up 2");
  EXPECT_EQ(closing[3], "In LineNodeParserService");
}

TEST_F(ParserMessagesContract, AClosingOnTheSameLineIsTraced) {
  const ustring both = u"#<@task#t1> #<@task#t1>";
  const Messages traced = ofTaskLine(both, 0, both);
  ASSERT_GE(traced.size(), 3U);
  EXPECT_EQ(traced[traced.size() - 3], "Closing task found on same line, closing it now");
  EXPECT_EQ(traced[traced.size() - 2], "End of task found, cleaning up 0");
}

TEST_F(ParserMessagesContract, AMissingPartnerIsTraced) {
  EXPECT_EQ(
      ofTaskLine(u"#<@task#t1>", 0, u"#<@task#t1>"),
      (Messages{"Parsing using the task parser",
                "No matching task marker was found for %<@task#t1>", "In LineNodeParserService",
                "Building a missing task marker failure", "finding Appendix Entry"}));
}

TEST_F(ParserMessagesContract, AnOverlapIsTraced) {
  ofTaskLine(u"#<@task#t1>", 0, kTaskBlock);
  EXPECT_EQ(ofTaskLine(u"#<@task#t2>", 3, kTaskBlock),
            (Messages{"Parsing using the task parser", "In LineNodeParserService",
                      "Building an overlapping task marker failure", "finding Appendix Entry"}));
}

TEST_F(ParserMessagesContract, WithTheSeverityDisabledNothingIsTracedAndParsingIsTheSame) {
  RecordedLog::enable(false);
  EXPECT_TRUE(ofTaskLine(u"#<@task#t1>", 0, kTaskBlock).empty());
  EXPECT_EQ(document->getNumberOfChildren(), 2U);
  code.parse(document, Snippet{u"x", {0, 0}, u""});
  EXPECT_TRUE(log.messages().empty());
  EXPECT_EQ(document->getNumberOfChildren(), 3U);
}

}  // namespace

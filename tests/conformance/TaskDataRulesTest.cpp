#include <gtest/gtest.h>

#include "conformance/TaskHost.hpp"
#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"

namespace quenlith::conformance {
namespace {

// The task data of a header whose appendix entry has `data`.
TaskRecord taskWith(const ustring& data) {
  TaskHost host;
  host.world.setAppendix({u"%<@task#a " + data + u">"});
  host.parse(u"x # <@task#a>", 0, blockOf({u"a"}));
  return host.taskAt(0);
}

TEST(TaskDataRules, WithoutAnEntryAllTenTextsAreEmpty) {
  TaskHost host;
  host.parse(u"x # <@task#a>", 0, blockOf({u"a"}));
  EXPECT_EQ(host.taskAt(0), TaskRecord());
  EXPECT_EQ(host.nodes().at(0).children.at(0).id, u"a") << "the node's id is the marker's";
}

TEST(TaskDataRules, ABooleanGivesAnEmptyText) {
  EXPECT_EQ(taskWith(u"{\"autorun\":true}"), TaskRecord());
}

TEST(TaskDataRules, ValuesThatAreNotStringsGiveEmptyTexts) {
  for (const auto* value :
       {u"1", u"1.5", u"null", u"[\"a\"]", u"{\"a\":\"b\"}", u"false", u"18446744073709551615"}) {
    EXPECT_EQ(taskWith(ustring(u"{\"uniqueId\":") + value + u"}"), TaskRecord());
  }
}

TEST(TaskDataRules, AStringIsKeptAsText) {
  EXPECT_EQ(taskWith(u"{\"collapsed\":\"true\"}").collapsed, u"true");
}

TEST(TaskDataRules, NonAsciiCharactersAreUnchanged) {
  EXPECT_EQ(taskWith(u"{\"text\":\"\u00e9\u6f22\U0001F600\"}").text, u"\u00e9\u6f22\U0001F600");
}

TEST(TaskDataRules, OtherKeysAreIgnored) {
  EXPECT_EQ(taskWith(u"{\"title\":\"t\",\"numCodeLines\":\"7\",\"taskId\":\"x\",\"Text\":\"y\"}"),
            TaskRecord());
}

struct KeyCase {
  const char16_t* key;
  ustring TaskRecord::*field;
};

const std::vector<KeyCase> kKeys = {
    {u"taskClassDefFile", &TaskRecord::appIdentifier},
    {u"uniqueId", &TaskRecord::taskId},
    {u"text", &TaskRecord::text},
    {u"run", &TaskRecord::executionModel},
    {u"autorun", &TaskRecord::autoRun},
    {u"collapsed", &TaskRecord::collapsed},
    {u"outputs", &TaskRecord::appVariables},
    {u"variablesMap", &TaskRecord::appVariablesUserMap},
    {u"appState", &TaskRecord::appState},
    {u"view", &TaskRecord::view},
};

TEST(TaskDataRules, EachKeySetsOneField) {
  for (const KeyCase& test : kKeys) {
    TaskRecord expected;
    expected.*test.field = u"value";
    EXPECT_EQ(taskWith(ustring(u"{\"") + test.key + u"\":\"value\"}"), expected);
  }
}

TEST(TaskDataRules, TheMessagesOfAHeaderComeInOrderAndShowTheIdOfTheAppendix) {
  TaskHost host;
  host.world.setAppendix({u"%<@task#a {\"uniqueId\":\"u\u00e9\"}>"});
  host.parse(u"x # <@task#a> # <@text:anchor#t>", 0, blockOf({u"a"}));
  EXPECT_EQ(host.takeMessages(),
            (std::vector<std::string>{
                "Parsing using the task parser", "Task marker found for first time",
                "Adding task marker to the list of seen markers", "Parsing live task appendix data",
                "finding Appendix Entry", "Adding Header node to tessera doc", "u\xC3\xA9",
                "Found an anchor marker for the task",
                "Adding text marker to the list of seen markers", "In LineNodeParserService"}));
}

TEST(TaskDataRules, ClosingKeepsTheChangesOfTheHost) {
  TaskHost host;
  host.world.setAppendix({u"%<@task#a {\"uniqueId\":\"u\",\"view\":\"old\"}>"});
  host.parse(u"x # <@task#a>", 0, blockOf({u"a"}));
  const auto header = host.document->getChildAt(0);
  const auto task =
      document::kdzero::LiveAppIntegratedInlineNode::share(header->getChildren()[0].get());
  auto data = task->getLiveTaskData();
  task->setLiveTaskData(data.setView(u"new"));
  host.takeMessages();
  host.parse(u"y # <@task#a>", 3);
  EXPECT_EQ(host.taskAt(0).view, u"new");
  EXPECT_EQ(host.taskAt(0).numCodeLines, 2);
  EXPECT_EQ(host.takeMessages(), (std::vector<std::string>{"Parsing using the task parser",
                                                           "End of task found, cleaning up 2", "u",
                                                           "In LineNodeParserService"}));
}

}  // namespace
}  // namespace quenlith::conformance

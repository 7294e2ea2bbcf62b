#include <gtest/gtest.h>

#include "conformance/TaskHost.hpp"

namespace quenlith::conformance {
namespace {

using Summary = std::vector<std::string>;

FailureRecord failureOf(const ustring& failureId, const ustring& markerId,
                        const JsonMap& data = {}) {
  FailureRecord failure;
  failure.failureId = failureId;
  failure.featureId = u"task";
  failure.markerId = markerId;
  failure.data = data;
  return failure;
}

TEST(TaskFailureRules, AMarkerWithoutAPartnerIsOneFailureOnItsLine) {
  TaskHost host;
  host.parseLines({u"x # <@task:kind#a>"});
  ASSERT_EQ(host.nodes().size(), 1U);
  EXPECT_EQ(host.nodes()[0].failures,
            std::vector<FailureRecord>{failureOf(u"missing_task_marker_pair", u"a")});
}

TEST(TaskFailureRules, AThirdMarkerWithTheSameIdMakesAllThreeFail) {
  TaskHost host;
  host.parseLines({u"# <@task#a>", u"# <@task#a>", u"# <@task#a>"});
  EXPECT_EQ(host.summary(), Summary(3, "line missing_task_marker_pair"));
}

TEST(TaskFailureRules, ThePartnerOfAnOverlappingMarkerFailsUntilReset) {
  TaskHost host;
  host.parseLines({u"# <@task#a>", u"# <@task#b>", u"# <@task#a>", u"# <@task#b>"});
  EXPECT_EQ(host.summary(), (Summary{"header a 3", "line", "line overlapping_task_marker", "line",
                                     "line missing_task_marker_pair"}));
  EXPECT_EQ(host.nodes().at(2).failures,
            std::vector<FailureRecord>{failureOf(u"overlapping_task_marker", u"b")});
  host.parser.reset();
  EXPECT_EQ(host.parse(u"# <@task#b>", 0, blockOf({u"b"})).type.kind, 3);
}

TEST(TaskFailureRules, AFailureCarriesTheWholeEntryUnchanged) {
  const ustring entry =
      u"%<@task#a "
      u"{\"uniqueId\":\"u\",\"n\":null,\"d\":1.0,\"i\":-1,\"l\":[true,{\"x\":\"\u00e9\"}],"
      u"\"big\":18446744073709551615}>";
  const JsonMap data = Marker(entry).getData();
  ASSERT_EQ(data.size(), 6U);
  TaskHost host;
  host.world.setAppendix({entry});
  host.parse(u"# <@task#a>", 0);
  host.parse(u"# <@task#a>", 3);
  EXPECT_EQ(host.nodes().at(0).failures.at(0), failureOf(u"missing_task_marker_pair", u"a", data));
  EXPECT_EQ(host.nodes().at(1).failures.at(0), failureOf(u"overlapping_task_marker", u"a", data));
}

TEST(TaskFailureRules, FailuresAreBuiltAfterTheLineIsParsed) {
  TaskHost host;
  host.parse(u"# <@task#\"a b\">", 0);
  EXPECT_EQ(
      host.takeMessages(),
      (Summary{"Parsing using the task parser",
               "No matching task marker was found for %<@task#\"a b\">", "In LineNodeParserService",
               "Building a missing task marker failure", "finding Appendix Entry"}));
  host.parse(u"# <@task#b>", 3);
  EXPECT_EQ(host.takeMessages(),
            (Summary{"Parsing using the task parser", "Task marker found for first time",
                     "Adding task marker to the list of seen markers", "In LineNodeParserService",
                     "Building an overlapping task marker failure", "finding Appendix Entry"}));
}

}  // namespace
}  // namespace quenlith::conformance

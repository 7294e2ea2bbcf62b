#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "quenlith/syntax/markers.hpp"
#include "support/FailingAllocations.hpp"

namespace quenlith::syntax {
namespace {

using fl::i18n::ustring;
using quenlith::test::allocationCount;
using quenlith::test::failEachAllocation;
using quenlith::test::liveAllocations;

const ustring kMarked =
    u"x # <@task#a-rather-long-identifier [1,2] {\"a key of some length\":[1,\"and a long "
    u"text\"]}> "
    u"// <@text:anchor#\"another one, quoted\"> ## <@output>";

TEST(ScannerMemory, ATextWithoutAMarkerDoesNotAllocate) {
  const ustring damaged =
      u"a long line without markers # <@task {\"a\":[1,2,{\"b\":\"c\"}] # <@widget> <@task> // "
      u"<@text#\"";
  const ustring task = u"task";
  const std::size_t before = allocationCount();
  EXPECT_TRUE(get_markers_from_snippet(damaged, false).empty());
  EXPECT_FALSE(has_feature(damaged, task));
  EXPECT_EQ(allocationCount(), before);
}

TEST(ScannerMemory, HasFeatureDoesNotAllocate) {
  const ustring output = u"output";
  const std::size_t before = allocationCount();
  EXPECT_TRUE(has_feature(kMarked, output));
  EXPECT_EQ(allocationCount(), before);
}

TEST(ScannerMemory, BareMarkersShareTheirParts) {
  const ustring task = u"task";
  const Marker first(task);
  const std::size_t before = allocationCount();
  const Marker second(task);
  EXPECT_EQ(allocationCount(), before);
  EXPECT_EQ(get_markers_from_snippet(u"# <@task>", false)[0].marker.elementView().data(),
            first.elementView().data());
}

// An empty id and empty data count as absent.
TEST(ScannerMemory, MarkersWithEmptyPartsShareTheirPartsToo) {
  const Marker bare(ustring(u"task"));
  EXPECT_EQ(Marker(u"# <@task#\"\">").elementView().data(), bare.elementView().data());
}

TEST(ScannerMemory, TheLastCopyOfAMarkerReleasesItsMemory) {
  const ustring text = u"# <@task#\"a-rather-long-identifier\" {\"a key of some length\":[1,2]}>";
  // What is made once and kept.
  EXPECT_EQ(Marker(text).dataView().size(), 1U);
  EXPECT_EQ(Marker(u"# <@task>").elementView(), u"task");
  const std::ptrdiff_t before = liveAllocations();
  {
    const Marker unread(text);
    EXPECT_EQ(liveAllocations(), before + 1);
    const Marker bare(u"# <@task>");
    EXPECT_EQ(liveAllocations(), before + 1);
    Marker sameBare;
    sameBare = bare;
    EXPECT_TRUE(sameBare == bare);
  }
  EXPECT_EQ(liveAllocations(), before);
  {
    const Marker read(text);
    EXPECT_EQ(read.dataView().size(), 1U);
    std::vector<Marker> copies(3, read);
    copies.pop_back();
    copies[0] = Marker();
    EXPECT_TRUE(copies[1] == read);
  }
  EXPECT_EQ(liveAllocations(), before);
}

// The memory of a marker whose first copies are destroyed is valid until the last one is.
TEST(ScannerMemory, AMarkerLivesAsLongAsItsLastCopy) {
  Marker last;
  {
    const Marker first(u"# <@task#a-rather-long-identifier>");
    const std::vector<Marker> copies(5, first);
    last = copies.back();
  }
  const std::size_t before = allocationCount();
  const ustring other(26, u'x');
  EXPECT_EQ(allocationCount(), before + 1);
  EXPECT_EQ(last.idView(), u"a-rather-long-identifier");
}

TEST(ScannerMemory, CopyingAMarkerDoesNotAllocate) {
  const auto markers = get_markers_from_snippet(kMarked, false);
  const std::size_t before = allocationCount();
  const Marker copy =
      markers[0].marker;  // NOLINT(performance-unnecessary-copy-initialization): the subject
  EXPECT_TRUE(copy == markers[0].marker);
  EXPECT_EQ(allocationCount(), before);
}

TEST(ScannerMemory, FailingAllocationsOnlyThrowBadAlloc) {
  const auto nothing = [] {};
  // The list grows twice; two of the markers allocate their parts, one of them a quoted id.
  EXPECT_GT(failEachAllocation([] { get_markers_from_snippet(kMarked, true); }, nothing), 5U);
  const auto markers = get_markers_from_snippet(kMarked, true);
  ASSERT_EQ(markers.size(), 3U);
  // The first call reads the data, and reads it again after a failure.
  EXPECT_GT(failEachAllocation([&] { markers[0].marker.dataView(); }, nothing), 4U);
  EXPECT_EQ(markers[0].marker.dataView().size(), 1U);
  EXPECT_GT(failEachAllocation([&] { markers[0].marker.toString(); }, nothing), 2U);
  EXPECT_GT(failEachAllocation([&] { markers[0].marker.getData(); }, nothing), 2U);
  Marker target(u"# <@task#before>");
  const ustring text = markers[0].marker.toString();
  EXPECT_GT(failEachAllocation([&] { target = Marker(text); },
                               [&] { EXPECT_EQ(target.idView(), u"before"); }),
            0U);
  EXPECT_TRUE(target == markers[0].marker);
}

TEST(ScannerMemory, AMarkerIsOneAllocationUntilItsDataIsRead) {
  const ustring text = u"# <@task#a-rather-long-identifier {\"a key of some length\":[1,2]}>";
  const std::size_t before = allocationCount();
  const Marker marker(text);
  EXPECT_EQ(allocationCount(), before + 1);
  Marker copy;
  copy = marker;
  EXPECT_EQ(copy.dataView().size(), 1U);
  const std::size_t asked = allocationCount();
  EXPECT_GT(asked, before + 1);
  EXPECT_EQ(&marker.dataView(), &copy.dataView());
  EXPECT_EQ(allocationCount(), asked);
}

}  // namespace
}  // namespace quenlith::syntax

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "fl/i18n/ustring.hpp"
#include "foundation/json/Value.hpp"
#include "quenlith/build/markup/core/MarkerInfo.hpp"
#include "quenlith/syntax/Marker.hpp"
#include "quenlith/syntax/markers.hpp"

namespace {

using fl::i18n::ustring;
using quenlith::build::markup::core::MarkerInfo;
using quenlith::syntax::get_marker;
using quenlith::syntax::get_markers_from_snippet;
using quenlith::syntax::has_feature;
using quenlith::syntax::Marker;
using MarkerData = std::map<std::string, foundation::json::Value>;
using Range = std::pair<std::uint64_t, std::uint64_t>;

static_assert(std::is_convertible_v<const ustring&, Marker>);
static_assert(std::is_constructible_v<Marker, const char16_t*>);
static_assert(std::is_copy_constructible_v<Marker> && std::is_copy_assignable_v<Marker>);
static_assert(std::is_move_constructible_v<Marker> && std::is_move_assignable_v<Marker>);

using Reader = const Marker&;
static_assert(std::is_same_v<decltype(std::declval<Reader>().getId()), ustring>);
static_assert(std::is_same_v<decltype(std::declval<Reader>().getElement()), ustring>);
static_assert(std::is_same_v<decltype(std::declval<Reader>().getType()), ustring>);
static_assert(std::is_same_v<decltype(std::declval<Reader>().getData()), MarkerData>);
static_assert(std::is_same_v<decltype(std::declval<Reader>().toString()), ustring>);

static_assert(std::is_same_v<decltype(MarkerInfo::marker), Marker>);
static_assert(std::is_same_v<decltype(MarkerInfo::position), std::uint64_t>);
static_assert(std::is_same_v<decltype(MarkerInfo::length), std::uint64_t>);
static_assert(std::is_same_v<decltype(MarkerInfo::range), std::optional<Range>>);

constexpr bool (Marker::*kEquals)(Marker) const = &Marker::operator==;
static_assert(
    std::is_same_v<decltype(get_markers_from_snippet(std::declval<const ustring&>(), false)),
                   std::vector<MarkerInfo>>);
static_assert(std::is_same_v<decltype(get_marker(std::declval<const std::vector<MarkerInfo>&>(),
                                                 std::declval<const ustring&>(),
                                                 std::declval<const ustring&>())),
                             std::optional<MarkerInfo>>);

TEST(MarkersContract, AMarkerIsBuiltFromTextInEveryForm) {
  const ustring constant = u"task";
  ustring changing = u"task";
  const Marker fromConstant = constant;
  const Marker fromChanging = changing;
  const Marker fromTemporary = ustring(u"task");
  const Marker fromLiteral(u"task");
  const Marker braced{u"task"};
  EXPECT_EQ(fromConstant.getElement(), u"task");
  EXPECT_TRUE(fromConstant == fromChanging);
  EXPECT_TRUE(fromConstant == fromTemporary);
  EXPECT_TRUE(fromConstant == fromLiteral);
  EXPECT_TRUE(fromConstant == braced);
  EXPECT_TRUE(fromConstant == constant);
}

TEST(MarkersContract, MarkersOfOneElementNameAreEqualAndHaveOneText) {
  for (const ustring element : {u"control", u"output", u"task", u"text"}) {
    const Marker first(element);
    const Marker second(element);
    EXPECT_TRUE((first.*kEquals)(second));
    EXPECT_TRUE(first == second);
    EXPECT_EQ(first.getElement(), element);
    EXPECT_EQ(first.getId(), u"");
    EXPECT_EQ(first.getType(), u"");
    EXPECT_TRUE(first.getData().empty());
    EXPECT_EQ(first.toString(), u"%<@" + element + u">");
    EXPECT_EQ(first.toString(), second.toString());
  }
}

TEST(MarkersContract, MarkersOfDifferentElementsDiffer) {
  EXPECT_FALSE(Marker(u"task") == Marker(u"text"));
  EXPECT_NE(Marker(u"task").toString(), Marker(u"text").toString());
}

TEST(MarkersContract, AMarkerIsCopiedMovedAndAssigned) {
  const Marker original(u"// <@text:anchor#intro>");
  Marker copy(original);
  // The operand of the comparison is a copy, too, so the parts are checked separately.
  EXPECT_EQ(copy.toString(), u"%<@text:anchor#intro>");
  EXPECT_TRUE(copy == original);
  Marker assigned(u"task");
  assigned = copy;
  EXPECT_EQ(assigned.toString(), original.toString());
  const Marker moved(std::move(copy));
  EXPECT_EQ(moved.toString(), original.toString());
  copy = Marker(u"output");
  EXPECT_EQ(copy.getElement(), u"output");
}

TEST(MarkersContract, ThePartsOfAMarkerAreRead) {
  const Marker marker(u"# <@control:slider#c2 [4,7] {\"min\":0.5,\"a\":\"x\"}>");
  EXPECT_EQ(marker.getElement(), u"control");
  EXPECT_EQ(marker.getType(), u"slider");
  EXPECT_EQ(marker.getId(), u"c2");
  const MarkerData data = marker.getData();
  ASSERT_EQ(data.size(), 2U);
  EXPECT_EQ(data.begin()->first, "a");
  EXPECT_EQ(data.rbegin()->first, "min");
  EXPECT_EQ(marker.toString(), u"%<@control:slider#c2 {\"a\":\"x\",\"min\":0.5}>");
  EXPECT_TRUE(Marker(marker.toString()) == marker);
}

TEST(MarkersContract, TheRecordOfAMarkerHasItsPlace) {
  const ustring snippet = u"y = f(x)  # <@output#o1 [0,8]>";
  const std::vector<MarkerInfo> markers = get_markers_from_snippet(snippet, false);
  ASSERT_EQ(markers.size(), 1U);
  const auto& [marker, position, length, range] = markers.front();
  EXPECT_EQ(marker.getId(), u"o1");
  EXPECT_EQ(position, 10U);
  EXPECT_EQ(position + length, snippet.size());
  EXPECT_EQ(range, Range(0, 8));
}

TEST(MarkersContract, AMarkerWithoutPositionDataHasNoRange) {
  const std::vector<MarkerInfo> markers = get_markers_from_snippet(u"# <@task#t1>", false);
  ASSERT_EQ(markers.size(), 1U);
  EXPECT_FALSE(markers.front().range.has_value());
}

TEST(MarkersContract, ARecordIsMadeFromItsFields) {
  const MarkerInfo info{Marker(u"task"), 3, 9, Range(0, 2)};
  EXPECT_EQ(info.marker.getElement(), u"task");
  EXPECT_EQ(info.position, 3U);
  EXPECT_EQ(info.length, 9U);
  EXPECT_EQ(info.range->second, 2U);
}

TEST(MarkersContract, ASnippetWithoutMarkersGivesNothing) {
  const ustring snippet = u"x = 1";
  const std::vector<MarkerInfo> markers = get_markers_from_snippet(snippet, false);
  EXPECT_TRUE(markers.empty());
  for (const ustring element : {u"control", u"output", u"task", u"text"}) {
    EXPECT_FALSE(has_feature(markers, element));
    EXPECT_FALSE(has_feature(snippet, element));
    EXPECT_FALSE(get_marker(markers, element, u"").has_value());
  }
}

TEST(MarkersContract, AMarkerIsFoundByElementAndType) {
  const std::vector<MarkerInfo> markers =
      get_markers_from_snippet(u"# <@text#plain> # <@text:anchor#here> # <@task#t1>", false);
  ASSERT_EQ(markers.size(), 3U);
  const ustring text = u"text";
  const ustring anchor = u"anchor";
  ASSERT_TRUE(get_marker(markers, text, anchor).has_value());
  EXPECT_EQ(get_marker(markers, text, anchor)->marker.getId(), u"here");
  ASSERT_TRUE(get_marker(markers, u"task", u"").has_value());
  EXPECT_EQ(get_marker(markers, u"task", u"")->marker.getId(), u"t1");
  EXPECT_EQ(get_marker(markers, ustring(u"text"), ustring())->marker.getElement(), u"text");
  EXPECT_FALSE(get_marker(markers, u"output", u"").has_value());
  EXPECT_FALSE(get_marker(markers, u"task", u"anchor").has_value());
}

TEST(MarkersContract, AFeatureIsLookedUpInAListAndInAText) {
  const ustring snippet = u"a = 1 # <@task#t1>";
  const std::vector<MarkerInfo> markers = get_markers_from_snippet(snippet, false);
  const ustring task = u"task";
  EXPECT_TRUE(has_feature(markers, task));
  EXPECT_TRUE(has_feature(markers, u"task"));
  EXPECT_FALSE(has_feature(markers, ustring(u"Task")));
  EXPECT_TRUE(has_feature(snippet, task));
  EXPECT_TRUE(has_feature(snippet, u"task"));
  EXPECT_FALSE(has_feature(snippet, u"output"));
  EXPECT_TRUE(has_feature(ustring(u"# <@output>"), u"output"));
  EXPECT_TRUE(has_feature(u"# <@output>", u"output"));
}

}  // namespace

#include "quenlith/syntax/Marker.hpp"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "fl/i18n/ustring.hpp"

namespace quenlith::syntax {
namespace {

using fl::i18n::ustring;
using fl::i18n::ustring_to_utf8;
using foundation::json::Value;

std::string canonical(const ustring& text) {
  return ustring_to_utf8(Marker(text).toString());
}

struct CanonicalCase {
  ustring text;
  std::string canonical;
};

const std::vector<CanonicalCase> kCanonicalCases{
    // The bare element names.
    {u"control", "%<@control>"},
    {u"output", "%<@output>"},
    {u"task", "%<@task>"},
    {u"text", "%<@text>"},
    // Any leader, a block comment, or neither; any blanks. The range is omitted.
    {u"// <@text:anchor#intro>", "%<@text:anchor#intro>"},
    {u"## <@task#\"my task\" [1,2] { \"b\" : 1.50, \"a\" : \"x\" }>",
     "%<@task#\"my task\" {\"a\":\"x\",\"b\":1.5}>"},
    {u"<@task>", "%<@task>"},
    {u" \t<@task>", "%<@task>"},
    {u"%%%%<@task>", "%<@task>"},
    {u"--\t <@task>", "%<@task>"},
    {u";;;<@task [1,2]>", "%<@task>"},
    {u"#<@task \t>", "%<@task>"},
    {u"!<@task>", "%<@task>"},
    {u"REM <@task>", "%<@task>"},
    {u"rem\t<@task>", "%<@task>"},
    {u"/* <@task> */", "%<@task>"},
    {u"/**<@task#a>***/", "%<@task#a>"},
    {u"(*<@task [1,2] {}>*)", "%<@task>"},
    {u"<!-- <@text:anchor#intro> -->", "%<@text:anchor#intro>"},
    {u"{- <@task> -}", "%<@task>"},
    // An element that is not known.
    {u"# <@widget:big#w1>", "%<@widget:big#w1>"},
    {u"# <@tasks>", "%<@tasks>"},
    {u"# <@\u00FC.-_9>", "%<@\xC3\xBC.-_9>"},
    // Empty parts count as absent.
    {u"# <@task#\"\" {}>", "%<@task>"},
    {u"# <@widget#\"\" { }>", "%<@widget>"},
    // An id is quoted only when necessary.
    {u"# <@task#\"plain\">", "%<@task#plain>"},
    {u"# <@task#\"a.b-c_D9\u00E9\">", "%<@task#a.b-c_D9\xC3\xA9>"},
    {u"# <@task#\"a>b\">", "%<@task#\"a>b\">"},
    {u"# <@task#\"\\u0061\">", "%<@task#a>"},
    {u"# <@task#\"\\\"\\\\\\/\\b\\f\\n\\r\\t\\u0000\\u001f\\u007f\">",
     "%<@task#\"\\\"\\\\/\\b\\f\\n\\r\\t\\u0000\\u001f\x7F\">"},
    // Keys ascend by their UTF-8 bytes, so U+FFFF comes before U+10000.
    {u"# <@task {\"\U00010000\":1,\"\uFFFF\":2,\"b\":3,\"B\":4,\"\":5}>",
     "%<@task {\"\":5,\"B\":4,\"b\":3,\"\xEF\xBF\xBF\":2,\"\xF0\x90\x80\x80\":1}>"},
    // Numbers.
    {u"# <@task {\"d\":[1.0,-0.0,1e21,1e20,1e-6,1e-7,0.10,1e2]}>",
     "%<@task {\"d\":[1.0,-0.0,1e+21,100000000000000000000.0,0.000001,1e-7,0.1,100.0]}>"},
    {u"# <@task {\"i\":[-0,-9223372036854775808,18446744073709551615,18446744073709551616]}>",
     "%<@task {\"i\":[0,-9223372036854775808,18446744073709551615,18446744073709552000.0]}>"},
    // Strings: only what must be escaped is.
    {u"# <@task {\"s\":\"\\/\\u00e9\\u007f\\u0001\\n\"}>",
     "%<@task {\"s\":\"/\xC3\xA9\x7F\\u0001\\n\"}>"},
    {u"# <@task { \"k\" : [ true , false , null , { } , [ ] ] }>",
     "%<@task {\"k\":[true,false,null,{},[]]}>"},
    // Of two equal keys the last one counts.
    {u"# <@task {\"a\":1,\"a\":2}>", "%<@task {\"a\":2}>"},
    // Each half of a pair may be escaped; an unpaired one becomes U+FFFD in data.
    {u"# <@task {\"a\":\"\\ud83d\xDE00\\ud83d\"}>",
     "%<@task {\"a\":\"\xF0\x9F\x98\x80\xEF\xBF\xBD\"}>"},
};

// A text converts to a marker implicitly; the parts of the scanner do not.
static_assert(std::is_convertible_v<const ustring&, Marker>);
static_assert(std::is_convertible_v<ustring, Marker>);
static_assert(std::is_constructible_v<Marker, const char16_t*>);
static_assert(!std::is_convertible_v<MarkerParts::Pointer, Marker>);

TEST(MarkerText, HasOneCanonicalForm) {
  for (const auto& [text, expected] : kCanonicalCases) {
    EXPECT_EQ(canonical(text), expected) << ustring_to_utf8(text);
  }
}

TEST(MarkerText, CanonicalTextGivesAnEqualMarker) {
  for (const auto& [text, expected] : kCanonicalCases) {
    const Marker marker(text);
    EXPECT_TRUE(Marker(marker.toString()) == marker) << expected;
  }
}

// Neither a bare name nor one whole marker.
const std::vector<ustring> kNoMarkers{u"",
                                      u"tasks",
                                      u"Task",
                                      u"task ",
                                      u" task",
                                      u"%<@>",
                                      u"widget",
                                      u"appendix",
                                      u"# <@appendix>",
                                      u"<@appendix#x>",
                                      u"x # <@task>",
                                      u"# <@task> ",
                                      u" # <@task>",
                                      u"/<@task>",
                                      u"-<@task>",
                                      u"*<@task>",
                                      u"REM<@task>",
                                      u"xREM <@task>",
                                      u"/* <@task>",
                                      u"/* <@task> *",
                                      u"/* <@task> */ ",
                                      u" /* <@task> */",
                                      u"<@task> */",
                                      u"# <@task> */",
                                      u"<!-- <@task> ->",
                                      u"# <@task",
                                      u"# <@task>>",
                                      u"#% <@task>",
                                      u"#\n<@task>",
                                      u"<@task><@task>",
                                      u"#",
                                      u"///",
                                      u"% x <@task>"};

TEST(MarkerText, AnyOtherTextGivesTheEmptyMarker) {
  for (const ustring& text : kNoMarkers) {
    const Marker marker(text);
    EXPECT_TRUE(marker == Marker()) << ustring_to_utf8(text);
    EXPECT_EQ(ustring_to_utf8(marker.toString()), "%<@>") << ustring_to_utf8(text);
  }
}

TEST(Marker, AccessorsReturnItsParts) {
  const Marker marker(u"# <@text:anchor#\"an id\" [1,2] {\"k\":\"v\"}>");
  EXPECT_EQ(marker.getElement(), u"text");
  EXPECT_EQ(marker.getType(), u"anchor");
  EXPECT_EQ(marker.getId(), u"an id");
  EXPECT_EQ(marker.getData(), (Marker::Data{{"k", Value("v")}}));
  EXPECT_EQ(marker.elementView(), u"text");
  EXPECT_EQ(marker.typeView(), u"anchor");
  EXPECT_EQ(marker.idView(), u"an id");
  EXPECT_EQ(marker.dataView(), marker.getData());
}

TEST(Marker, TheEmptyMarkerHasEmptyParts) {
  const Marker marker;
  EXPECT_EQ(marker.getElement(), u"");
  EXPECT_EQ(marker.getType(), u"");
  EXPECT_EQ(marker.getId(), u"");
  EXPECT_TRUE(marker.getData().empty());
}

TEST(Marker, TwoBuiltFromTaskAreEqualAndHaveTheSameText) {
  EXPECT_TRUE(Marker(u"task") == Marker(u"task"));
  EXPECT_EQ(Marker(u"task").toString(), Marker(u"task").toString());
}

TEST(Marker, EqualWhenElementTypeIdAndDataAre) {
  const ustring text = u"# <@task:t#i {\"a\":1}>";
  EXPECT_TRUE(Marker(text) == Marker(u";; <@task:t#\"i\" [0,1] { \"a\" : 1 }>"));
  for (const ustring other :
       {u"# <@text:t#i {\"a\":1}>", u"# <@task:u#i {\"a\":1}>", u"# <@task:t#j {\"a\":1}>",
        u"# <@task:t#i {\"a\":1.0}>", u"# <@task:t#i>", u"# <@task#ti {\"a\":1}>"}) {
    EXPECT_TRUE(Marker(text) != Marker(other)) << ustring_to_utf8(other);
  }
}

TEST(Marker, AnIdKeepsUnpairedSurrogates) {
  const ustring id{u'a', 0xD800, 0xDC01, 0xDFFF};
  const Marker raw(u"# <@task#" + id + u">");
  EXPECT_EQ(raw.getId(), id);
  const Marker escaped(u"# <@task#\"a\\ud800\\udc01\\udfff\">");
  EXPECT_EQ(escaped.getId(), id);
  EXPECT_TRUE(raw == escaped);
  const ustring spaced = ustring{0xD800} + u" b";
  const Marker quoted(u"# <@task#\"" + spaced + u"\">");
  EXPECT_EQ(quoted.getId(), spaced);
  EXPECT_TRUE(Marker(quoted.toString()) == quoted);
}

TEST(Marker, CopiesShareTheirParts) {
  const Marker original(u"# <@task#a-rather-long-identifier {\"k\":1}>");
  const Marker copy = original;  // NOLINT(performance-unnecessary-copy-initialization): the subject
  EXPECT_EQ(copy.idView().data(), original.idView().data());
  EXPECT_EQ(&copy.dataView(), &original.dataView());
}

TEST(Marker, SurvivesSelfAssignmentAndMoves) {
  Marker marker(u"# <@task#t1>");
  Marker& same = marker;
  marker = same;
  EXPECT_EQ(marker.idView(), u"t1");
  std::swap(marker, same);
  EXPECT_EQ(marker.idView(), u"t1");
  Marker moved = std::move(marker);
  EXPECT_EQ(moved.idView(), u"t1");
  marker = moved;
  EXPECT_TRUE(marker == moved);
}

TEST(Marker, CopiesMayBeUsedOnSeveralThreads) {
  const Marker shared(u"# <@task#t1 {\"k\":\"v\"}>");
  std::vector<std::thread> threads;
  for (int count = 0; count < 4; ++count) {
    threads.emplace_back([copy = shared] {
      for (int round = 0; round < 1000; ++round) {
        Marker another;
        another = copy;
        EXPECT_TRUE(Marker(another.toString()) == copy);
        EXPECT_TRUE(Marker(u"task").typeView().empty());
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

TEST(Marker, DataMayBeReadOnSeveralThreadsAtOnce) {
  for (int round = 0; round < 200; ++round) {
    const Marker shared(u"# <@task#t1 {\"k\":[1,2,3],\"l\":\"v\"}>");
    std::atomic<int> ready = 0;
    std::vector<std::thread> threads;
    std::array<const Marker::Data*, 4> seen{};
    for (const Marker::Data*& data : seen) {
      threads.emplace_back([copy = shared, &ready, &data] {
        ++ready;
        while (ready < 4) std::this_thread::yield();
        data = &copy.dataView();
      });
    }
    for (std::thread& thread : threads) thread.join();
    for (const Marker::Data* data : seen) EXPECT_EQ(data, &shared.dataView());
    EXPECT_EQ(shared.dataView().size(), 2U);
  }
}

TEST(Marker, EqualDataMayBeWrittenInSeveralWays) {
  const Marker marker(u"<@task#t {\"a\":1,\"b\":\"x\"}>");
  EXPECT_TRUE(marker == Marker(u"<@task#\"t\" {\"b\":\"x\", \"a\":1}>"));
  EXPECT_TRUE(marker == Marker(u"<@task#t {\"a\":1,\"b\":\"x\"}>"));
  EXPECT_FALSE(marker == Marker(u"<@task#t {\"a\":1,\"b\":\"y\"}>"));
  EXPECT_FALSE(marker == Marker(u"<@task#t {\"a\":1}>"));
  EXPECT_FALSE(marker == Marker(u"<@task#t>"));
  EXPECT_TRUE(Marker(u"<@task {}>") == Marker(u"task"));
  EXPECT_TRUE(Marker(u"<@task { }>") == Marker(u"<@task {}>"));
  EXPECT_EQ(Marker(u"<@task#\"\" { }>").toString(), u"%<@task>");
}

}  // namespace
}  // namespace quenlith::syntax

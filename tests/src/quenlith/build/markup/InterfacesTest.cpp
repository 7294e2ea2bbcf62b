#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

#include "quenlith/build/markup/SnippetParser.hpp"
#include "quenlith/build/markup/services/ParserServicesProvider.hpp"

namespace {

using quenlith::build::markup::ParseResult;
using quenlith::build::markup::Snippet;
using quenlith::build::markup::SnippetParser;
using quenlith::build::markup::SnippetType;

TEST(SnippetType, IsTwoBytes) {
  EXPECT_EQ(sizeof(SnippetType), 2u);
  EXPECT_EQ((SnippetType{1, 3}), (SnippetType{1, 3}));
  EXPECT_NE((SnippetType{1, 3}), (SnippetType{0, 3}));
  EXPECT_NE((SnippetType{1, 3}), (SnippetType{1, 0}));
}

TEST(ParseResult, StartsAsPlainCodeWithoutMarkers) {
  const ParseResult result;
  EXPECT_EQ(result.type.kind, 0);
  EXPECT_TRUE(result.markerTypes.empty());
  EXPECT_FALSE(result.flag);
}

TEST(ParseResult, StoresEachMarkerKindOnceInCodeUnitOrder) {
  ParseResult result;
  for (const char16_t* text : {u"b", u"\xFFFF", u"a", u"\xD800", u"b"}) {
    result.markerTypes.insert(text);
  }
  EXPECT_EQ(std::vector<std::u16string>(result.markerTypes.begin(), result.markerTypes.end()),
            (std::vector<std::u16string>{u"a", u"b", u"\xD800", u"\xFFFF"}));
}

/// A parser that does not override `reset`.
class WithoutReset : public SnippetParser {
 public:
  bool canParse(const Snippet&) override { return true; }
  ParseResult parse(std::shared_ptr<document::kdzero::TesseraDocument>, const Snippet&) override {
    return {};
  }
};

TEST(SnippetParser, OnlyResetNeedNotBeOverridden) {
  EXPECT_TRUE(std::is_abstract_v<SnippetParser>);
  EXPECT_FALSE(std::is_abstract_v<WithoutReset>);
}

TEST(ServiceInterfaces, AreFoundByTheirQualifiedNames) {
  namespace markup = quenlith::build::markup;
  EXPECT_EQ(us_service_interface_iid<SnippetParser>(), "quenlith::build::markup::SnippetParser");
  EXPECT_EQ(us_service_interface_iid<markup::code::CodeElementParser>(),
            "quenlith::build::markup::code::CodeElementParser");
  EXPECT_EQ(us_service_interface_iid<markup::contributordata::LineContributorDataParser>(),
            "quenlith::build::markup::contributordata::LineContributorDataParser");
  EXPECT_EQ(us_service_interface_iid<markup::services::ParserServicesProvider>(),
            "quenlith::build::markup::services::ParserServicesProvider");
}

TEST(ServiceInterfaces, HaveVirtualDestructors) {
  EXPECT_TRUE(std::has_virtual_destructor_v<SnippetParser>);
  EXPECT_TRUE(std::has_virtual_destructor_v<quenlith::build::markup::code::CodeElementParser>);
}

}  // namespace

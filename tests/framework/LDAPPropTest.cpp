#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include <cppmicroservices/AnyMap.h>
#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/LDAPFilter.h>
#include <cppmicroservices/LDAPProp.h>

using cppmicroservices::Any;
using cppmicroservices::AnyMap;
using cppmicroservices::LDAPFilter;
using cppmicroservices::LDAPProp;
using cppmicroservices::LDAPPropExpr;

namespace {

std::string text(const LDAPPropExpr& expression) {
  return expression;
}

TEST(LDAPProps, ComparisonsBecomeConditions) {
  const LDAPProp key("k");
  EXPECT_EQ(text(key == "v"), "(k=v)");
  EXPECT_EQ(text(key == std::string("a*")), "(k=a*)");
  EXPECT_EQ(text(key == 5), "(k=5)");
  EXPECT_EQ(text(key == 'c'), "(k=c)");
  EXPECT_EQ(text(key == true), "(k=true)");
  EXPECT_EQ(text(key == false), "(k=false)");
  EXPECT_EQ(text(key == Any(7)), "(k=7)");
  EXPECT_EQ(text(key != "v"), "(!(k=v))");
  EXPECT_EQ(text(key != 3), "(!(k=3))");
  EXPECT_EQ(text(key != Any(7)), "(!(k=7))");
  EXPECT_EQ(text(key >= -3), "(k>=-3)");
  EXPECT_EQ(text(key >= Any(7)), "(k>=7)");
  EXPECT_EQ(text(key <= 1.5), "(k<=1.5)");
  EXPECT_EQ(text(key <= std::string("v")), "(k<=v)");
  EXPECT_EQ(text(key <= Any(7)), "(k<=7)");
  EXPECT_EQ(text(key.Approx("hi")), "(k~=hi)");
  EXPECT_EQ(text(key.Approx(2)), "(k~=2)");
  EXPECT_EQ(text(key.Approx(Any(7))), "(k~=7)");
  EXPECT_EQ(text(key), "(k=*)");
  EXPECT_EQ(text(!key), "(!(k=*))");
}

TEST(LDAPProps, ExpressionsAreJoined) {
  EXPECT_EQ(text(LDAPProp("name") == "Ben" && !(LDAPProp("count") == 1)),
            "(&(name=Ben)(!(count=1)))");
  EXPECT_EQ(text(LDAPProp("a") || !LDAPProp("b")), "(|(a=*)(!(b=*)))");
  LDAPPropExpr joined(LDAPProp("a") == 1);
  joined |= LDAPProp("b") == 2;
  EXPECT_EQ(text(joined), "(|(a=1)(b=2))");
  joined &= LDAPProp("c") == 3;
  EXPECT_EQ(text(joined), "(&(|(a=1)(b=2))(c=3))");
}

TEST(LDAPProps, EmptyExpressionIsLeftOut) {
  const LDAPPropExpr none;
  EXPECT_TRUE(none.IsNull());
  const LDAPPropExpr some(LDAPProp("a") == 1);
  EXPECT_FALSE(some.IsNull());
  EXPECT_EQ(text(none || some), "(a=1)");
  EXPECT_EQ(text(none && some), "(a=1)");
  LDAPPropExpr negated;
  EXPECT_TRUE((!negated).IsNull());
}

TEST(LDAPProps, EmptyTextGivesTheEmptyExpression) {
  const LDAPProp key("k");
  const std::string empty;
  EXPECT_TRUE((key == empty).IsNull());
  EXPECT_TRUE((key == Any(empty)).IsNull());
  EXPECT_TRUE((key != empty).IsNull());
  EXPECT_TRUE((key >= empty).IsNull());
  EXPECT_TRUE((key <= empty).IsNull());
  EXPECT_TRUE(key.Approx(empty).IsNull());
  EXPECT_EQ(text(key == ""), "(k=)");
}

TEST(LDAPProps, AreFilters) {
  const LDAPFilter filter(LDAPProp("name") == "Ben" && LDAPProp("count") >= 2);
  EXPECT_TRUE(filter.Match(AnyMap(AnyMap::UNORDERED_MAP_CASEINSENSITIVE_KEYS,
                                  {{"name", Any(std::string("Ben"))}, {"count", Any(2)}})));
  EXPECT_FALSE(filter.Match(AnyMap(AnyMap::UNORDERED_MAP_CASEINSENSITIVE_KEYS,
                                   {{"name", Any(std::string("Ben"))}, {"count", Any(1)}})));
}

TEST(LDAPFilters, EmptyOneMatchesNoBundle) {
  EXPECT_FALSE(LDAPFilter().Match(cppmicroservices::Bundle()));
  EXPECT_THROW((void)LDAPFilter("(a=b)").Match(cppmicroservices::Bundle()), std::invalid_argument);
}

TEST(LDAPProps, EmptyNameAndEmptyValueAreRefused) {
  EXPECT_THROW(LDAPProp(""), std::invalid_argument);
  EXPECT_THROW((void)(LDAPProp("k") == Any()), std::logic_error);
  EXPECT_THROW((void)(LDAPProp("k") >= Any()), std::logic_error);
}

}  // namespace

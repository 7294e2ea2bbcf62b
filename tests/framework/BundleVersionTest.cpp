#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>

#include <cppmicroservices/BundleVersion.h>

#include "FrameworkFixture.hpp"

using cppmicroservices::BundleVersion;
using namespace std::string_literals;

namespace {

std::string printed(const BundleVersion& version) {
  std::ostringstream text;
  text << version;
  return text.str();
}

TEST(BundleVersions, AreReadFromText) {
  EXPECT_EQ(BundleVersion("1"s).ToString(), "1.0.0");
  EXPECT_EQ(BundleVersion("1.2"s).ToString(), "1.2.0");
  EXPECT_EQ(BundleVersion("1.2.3"s).ToString(), "1.2.3");
  EXPECT_EQ(BundleVersion("10.20.30.a-B_9"s).ToString(), "10.20.30.a-B_9");
  EXPECT_EQ(printed(BundleVersion("4294967295.0.0.q"s)), "4294967295.0.0.q");
  EXPECT_EQ(BundleVersion::ParseVersion(" \t1.2 ").ToString(), "1.2.0");
  EXPECT_EQ(BundleVersion::ParseVersion("").ToString(), "0.0.0");
  EXPECT_EQ(BundleVersion::ParseVersion("  ").ToString(), "0.0.0");
}

TEST(BundleVersions, OtherTextIsRefused) {
  for (const char* text : {"x", "1.2.3.a b", "1.2.3.4.5", "1.2.3.<", "1.2.3.{", "4294967296"}) {
    EXPECT_THROW(BundleVersion{std::string(text)}, std::invalid_argument) << text;
    EXPECT_THROW(BundleVersion::ParseVersion(text), std::invalid_argument) << text;
  }
  EXPECT_THROW(BundleVersion(1, 0, 0, "<>"), std::invalid_argument);
}

TEST(BundleVersions, HaveParts) {
  const BundleVersion version(1, 2, 3, "q");
  EXPECT_EQ(version.GetMajor(), 1U);
  EXPECT_EQ(version.GetMinor(), 2U);
  EXPECT_EQ(version.GetMicro(), 3U);
  EXPECT_EQ(version.GetQualifier(), "q");
  EXPECT_FALSE(version.IsUndefined());
  EXPECT_EQ(BundleVersion(1, 2, 3).GetQualifier(), "");
  EXPECT_EQ(BundleVersion(1, 2, 3, "").ToString(), "1.2.3");
}

TEST(BundleVersions, AreOrderedByTheirParts) {
  EXPECT_EQ(BundleVersion(1, 2, 3).Compare(BundleVersion("1.2.3"s)), 0);
  EXPECT_LT(BundleVersion(1, 2, 3).Compare(BundleVersion(1, 2, 4)), 0);
  EXPECT_LT(BundleVersion(1, 9, 9).Compare(BundleVersion(2, 0, 0)), 0);
  EXPECT_GT(BundleVersion(1, 10, 0).Compare(BundleVersion(1, 9, 0)), 0);
  EXPECT_LT(BundleVersion(1, 2, 3).Compare(BundleVersion(1, 2, 3, "a")), 0);
  EXPECT_GT(BundleVersion(1, 2, 3, "b").Compare(BundleVersion(1, 2, 3, "a")), 0);
  EXPECT_TRUE(BundleVersion("1.0"s) == BundleVersion(1, 0, 0));
  EXPECT_FALSE(BundleVersion("1.0"s) == BundleVersion(1, 0, 0, "a"));
}

TEST(BundleVersions, UndefinedOneHasNeitherPartsNorOrder) {
  const BundleVersion none = BundleVersion::UndefinedVersion();
  EXPECT_TRUE(none.IsUndefined());
  EXPECT_EQ(none.ToString(), "undefined");
  EXPECT_THROW((void)none.GetMajor(), std::logic_error);
  EXPECT_THROW((void)none.GetMinor(), std::logic_error);
  EXPECT_THROW((void)none.GetMicro(), std::logic_error);
  EXPECT_THROW((void)none.GetQualifier(), std::logic_error);
  EXPECT_THROW((void)none.Compare(BundleVersion(1, 0, 0)), std::logic_error);
  EXPECT_THROW((void)BundleVersion(1, 0, 0).Compare(none), std::logic_error);
  EXPECT_TRUE(none == BundleVersion::UndefinedVersion());
  EXPECT_FALSE(BundleVersion(0, 0, 0) == none);
  EXPECT_THROW((void)(none == BundleVersion(0, 0, 0)), std::logic_error);
}

class VersionOfABundle : public FrameworkFixture {};

TEST_F(VersionOfABundle, IsThatOfItsManifest) {
  EXPECT_EQ(install("parts").GetVersion().ToString(), "1.2.3");
  EXPECT_EQ(install("active").GetVersion().ToString(), "2.0.0");
  EXPECT_GE(framework.GetVersion().Compare(BundleVersion(3, 8, 0)), 0);
  EXPECT_THROW((void)cppmicroservices::Bundle().GetVersion(), std::invalid_argument);
}

}  // namespace

#include "tessera/reports/artifactUri.hpp"

#include <gtest/gtest.h>

namespace {

using tessera::reports::artifactUri;

TEST(ArtifactUri, APlainRelativePathIsItsOwnUri) {
  EXPECT_EQ(artifactUri("src/a_b-c.1~.py"), "src/a_b-c.1~.py");
  EXPECT_EQ(artifactUri("../a.py"), "../a.py");
  EXPECT_EQ(artifactUri("-"), "-");
}

TEST(ArtifactUri, AnAbsolutePathIsAFileUri) {
  EXPECT_EQ(artifactUri("/home/a b/c.py"), "file:///home/a%20b/c.py");
}

TEST(ArtifactUri, OtherBytesAreEncoded) {
  EXPECT_EQ(artifactUri("a b#c?d%e.py"), "a%20b%23c%3Fd%25e.py");
  EXPECT_EQ(artifactUri("ä/\n[\"\\]"), "%C3%A4/%0A%5B%22%5C%5D");
  EXPECT_EQ(artifactUri("\xFF\x80"), "%FF%80");
  // A colon in the first segment would end a scheme.
  EXPECT_EQ(artifactUri("c:a.py"), "c%3Aa.py");
}

TEST(ArtifactUri, ADotAtTheStartIsLeftOut) {
  EXPECT_EQ(artifactUri("./a.py"), "a.py");
  EXPECT_EQ(artifactUri("././/a/./b.py"), "a/./b.py");
  EXPECT_EQ(artifactUri(".hidden/a.py"), ".hidden/a.py");
  EXPECT_EQ(artifactUri("./"), "./");
  EXPECT_EQ(artifactUri(".//"), ".//");
}

}  // namespace

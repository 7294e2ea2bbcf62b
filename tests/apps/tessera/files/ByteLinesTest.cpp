#include "tessera/files/ByteLines.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "apps/tessera/support/TemporaryFolder.hpp"

namespace {

std::vector<std::string> readAll(const std::string& name) {
  tessera::files::ByteLines lines(name);
  std::vector<std::string> result;
  while (const auto line = lines.next()) result.emplace_back(*line);
  return result;
}

TEST(ByteLines, AreSplitAtLineFeeds) {
  const TemporaryFolder folder;
  using Lines = std::vector<std::string>;
  EXPECT_EQ(readAll(folder.write("f", "")), Lines{});
  EXPECT_EQ(readAll(folder.write("f", "a")), Lines{"a"});
  EXPECT_EQ(readAll(folder.write("f", "a\n\nb\r\n")), (Lines{"a", "", "b\r"}));
  EXPECT_EQ(readAll(folder.write("f", "\xEF\xBB\xBFxy\n\xEF\xBB\xBF")),
            (Lines{"xy", "\xEF\xBB\xBF"}));
}

TEST(ByteLines, MayBeLongerThanOneRead) {
  const TemporaryFolder folder;
  std::vector<std::string> lines;
  std::string bytes;
  for (std::size_t length = 1; length < 400000; length = length * 3 + 1) {
    lines.emplace_back(length, static_cast<char>('a' + lines.size()));
    bytes += lines.back() + "\n";
  }
  EXPECT_EQ(readAll(folder.write("f", bytes)), lines);
}

TEST(ByteLines, ReportWhetherTheNextLineIsBuffered) {
  const TemporaryFolder folder;
  tessera::files::ByteLines lines(folder.write("f", "a\nb\nc"));
  EXPECT_FALSE(lines.isNextHere());
  lines.next();
  EXPECT_TRUE(lines.isNextHere());
  lines.next();
  EXPECT_FALSE(lines.isNextHere());
}

}  // namespace

#include "tessera/progress/describeProgress.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace {

using namespace std::chrono_literals;
using tessera::progress::describeEnd;
using tessera::progress::describeProgress;
using tessera::progress::Figures;

constexpr std::size_t kWide = 200;

Figures figures(std::uint64_t filesDone, std::uint64_t files, std::uint64_t bytesDone,
                std::optional<std::uint64_t> bytes, std::chrono::milliseconds elapsed) {
  Figures made;
  made.filesDone = filesDone;
  made.files = files;
  made.bytesDone = bytesDone;
  made.bytes = bytes;
  made.elapsed = elapsed;
  return made;
}

TEST(DescribeProgress, HasWhatIsKnown) {
  const struct {
    Figures figures;
    std::string text;
  } cases[] = {
      {figures(37'012, 100'000, 420'000'000, 1'100'000'000, 10s),
       "38 %  37,012 of 100,000 files  420 MB of 1.1 GB  42 MB/s  16 s left"},
      // One file is not counted.
      {figures(0, 1, 1'500'000, 60'000'000, 500ms), " 2 %  1.5 MB of 60 MB  3.0 MB/s  20 s left"},
      // The sizes of all files are not known yet.
      {figures(3, 5'000'000, 1000, std::nullopt, 1s), "3 of 5,000,000 files  1.0 kB  1.0 kB/s"},
      // Too early for a rate, and before the first byte.
      {figures(0, 1, 500, 1000, 199ms), "50 %  500 B of 1.0 kB"},
      {figures(0, 2, 0, 999, 5s), " 0 %  0 of 2 files  0 B of 999 B"},
      // No size at all, as of standard input.
      {figures(0, 1, 0, 0, 61s), "1:01"},
      {figures(1, 2, 0, 0, 61s), "1 of 2 files"},
      // Files may grow.
      {figures(1, 1, 2000, 1000, 1s), "100 %  2.0 kB of 1.0 kB  2.0 kB/s  0 s left"},
      {figures(0, 1, 1000, 10'000'000, 1s), " 0 %  1.0 kB of 10 MB  1.0 kB/s  2:46:39 left"},
  };
  for (const auto& row : cases) EXPECT_EQ(describeProgress(row.figures, kWide), row.text);
}

TEST(DescribeProgress, LeavesOutWhatDoesNotFit) {
  const Figures all = figures(37'012, 100'000, 420'000'000, 1'100'000'000, 10s);
  EXPECT_EQ(describeProgress(all, 67),
            "38 %  37,012 of 100,000 files  420 MB of 1.1 GB  42 MB/s  16 s left");
  EXPECT_EQ(describeProgress(all, 66),
            "38 %  37,012 of 100,000 files  420 MB of 1.1 GB  16 s left");
  EXPECT_EQ(describeProgress(all, 50), "38 %  37,012 of 100,000 files  16 s left");
  EXPECT_EQ(describeProgress(all, 20), "38 %  16 s left");
  EXPECT_EQ(describeProgress(all, 6), "38 %");
  EXPECT_EQ(describeProgress(all, 2), "38");
}

TEST(DescribeProgress, SizesHaveTwoDigits) {
  const struct {
    std::uint64_t bytes;
    std::string text;
  } cases[] = {{0, "0 B"},          {999, "999 B"},           {1000, "1.0 kB"},
               {9949, "9.9 kB"},    {9950, "10 kB"},          {999'400, "999 kB"},
               {999'500, "1.0 MB"}, {15'000'000'000, "15 GB"}};
  for (const auto& row : cases) {
    EXPECT_EQ(describeEnd(figures(1, 1, row.bytes, row.bytes, 0ms)),
              "1 file, " + row.text + " in 0 s");
  }
}

TEST(DescribeProgress, TheEndHasTheTimeAndTheRate) {
  EXPECT_EQ(describeEnd(figures(2000, 2000, 58'000'000, 58'000'000, 29s)),
            "2,000 files, 58 MB in 29 s, 2.0 MB/s");
}

}  // namespace

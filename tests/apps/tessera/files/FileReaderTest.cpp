#include "tessera/files/FileReader.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "apps/tessera/support/TemporaryFolder.hpp"
#include "tessera/diagnostics/Problem.hpp"

namespace {

using tessera::diagnostics::ProblemError;
using tessera::files::FileReader;

/// Returns the rest of a file, read in small pieces.
std::string readAll(FileReader& file) {
  std::string text;
  char piece[5];
  while (const std::size_t count = file.read(piece, sizeof piece)) text.append(piece, count);
  return text;
}

TEST(FileReader, AFileWithANulInItsFirst8KiBIsBinary) {
  const TemporaryFolder folder;
  struct Case {
    std::string bytes;
    bool isBinary;
  };
  const std::string text(8191, 'x');
  const std::string nul(1, '\0');
  const Case cases[] = {
      {"", false},
      {"text", false},
      {nul, true},
      {"x" + nul, true},
      {text, false},
      {text + nul, true},
      {text + "x" + nul, false},
      {text + nul + std::string(100000, 'y'), true},
  };
  for (const Case& test : cases) {
    FileReader file(folder.write("f", test.bytes));
    EXPECT_EQ(file.looksBinary(), test.isBinary) << test.bytes.size();
  }
}

TEST(FileReader, WhatWasExaminedIsReadAllTheSame) {
  const TemporaryFolder folder;
  for (const std::size_t size : {0U, 1U, 5U, 6U, 8191U, 8192U, 8193U, 20000U}) {
    std::string bytes(size, '\0');
    std::ranges::generate(bytes, [next = 0]() mutable { return static_cast<char>(++next % 251); });
    FileReader file(folder.write("f", bytes));
    file.looksBinary();
    EXPECT_EQ(readAll(file), bytes) << size;
  }
}

TEST(FileReader, AFoundFileIsNotFollowedElsewhere) {
  const TemporaryFolder folder;
  const std::string root = folder.path("d/");
  ASSERT_EQ(::mkdir(root.c_str(), 0755), 0);
  ASSERT_EQ(::mkdir((root + "s").c_str(), 0755), 0);
  folder.write("secret", "secret");
  folder.write("d/s/f", "text");
  ASSERT_EQ(::symlink("../../secret", (root + "s/link").c_str()), 0);
  ASSERT_EQ(::symlink("s", (root + "linked").c_str()), 0);
  ASSERT_EQ(::symlink("d", folder.path("named").c_str()), 0);
  ASSERT_EQ(::mkfifo((root + "s/pipe").c_str(), 0644), 0);
  const auto read = [](const std::string& name, std::size_t followed) {
    FileReader file(name, followed);
    return readAll(file);
  };
  EXPECT_EQ(read(root + "s/f", root.size()), "text");
  // Links in what the user named are followed.
  const std::string named = folder.path("named/");
  EXPECT_EQ(read(named + "s/f", named.size()), "text");
  EXPECT_EQ(read(root + "linked/f", root.size() + 7), "text");
  for (const char* const path : {"s/link", "linked/f", "s/pipe", "s", "s/none"}) {
    EXPECT_THROW(read(root + path, root.size()), ProblemError) << path;
  }
}

// Its size is not known before it is read.
TEST(FileReader, AFileOfTheSystemIsExaminedUntilItsEnd) {
  FileReader file("/proc/self/cmdline");
  EXPECT_TRUE(file.looksBinary());
}

}  // namespace

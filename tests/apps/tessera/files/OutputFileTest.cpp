#include "tessera/files/OutputFile.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "apps/tessera/support/TemporaryFolder.hpp"
#include "tessera/files/Descriptor.hpp"

namespace {

using tessera::files::Descriptor;
using tessera::files::OutputFile;

/// A file of a command that appends to it, or not.
class OutputFileTest : public testing::TestWithParam<int> {
 protected:
  void append(std::string_view text) const {
    const Descriptor other(::open(name.c_str(), O_WRONLY | O_APPEND));
    EXPECT_EQ(::write(other.get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }

  const TemporaryFolder folder;
  const std::string name = folder.write("out", "");
  const Descriptor opened{::open(name.c_str(), O_WRONLY | GetParam())};
  OutputFile file{opened.get(), name};
};

TEST_P(OutputFileTest, WhatWasWrittenIsTakenBack) {
  append("header\n");
  if (GetParam() == 0) ::lseek(opened.get(), 0, SEEK_END);
  file.writeThrough("kept\n");
  file.writeThrough("pa");
  file.writeThrough("rt");
  EXPECT_TRUE(file.takeBack(4));
  file.writeThrough("rest\n");
  EXPECT_TRUE(file.takeBack(5));
  file.writeThrough("end\n");
  EXPECT_EQ(folder.read("out"), "header\nkept\nend\n");
}

TEST_P(OutputFileTest, WhatAnotherProcessHasAppendedStays) {
  file.writeThrough("part");
  append("other\n");
  EXPECT_FALSE(file.takeBack(4));
  EXPECT_EQ(folder.read("out"), "partother\n");
}

INSTANTIATE_TEST_SUITE_P(Modes, OutputFileTest, testing::Values(0, O_APPEND));

using AppendedFileTest = OutputFileTest;

TEST_P(AppendedFileTest, WhatAnotherProcessHasAppendedBetweenStays) {
  file.writeThrough("kept\n");
  append("early\n");
  file.writeThrough("pa");
  append("other\n");
  file.writeThrough("rt");
  EXPECT_FALSE(file.takeBack(4));
  EXPECT_EQ(folder.read("out"), "kept\nearly\npaother\nrt");
  EXPECT_TRUE(file.takeBack(2));
  EXPECT_EQ(folder.read("out"), "kept\nearly\npaother\n");
}

INSTANTIATE_TEST_SUITE_P(Modes, AppendedFileTest, testing::Values(O_APPEND));

}  // namespace

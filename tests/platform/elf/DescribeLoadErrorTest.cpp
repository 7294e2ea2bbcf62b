#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "quenlith/elf/describeLoadError.hpp"

namespace quenlith::elf {
namespace {

const std::string kPath = "/bundles/a.so";

TEST(DescribeLoadError, NamesALibraryThatIsMissing) {
  const Fault fault = describeLoadError(
      kPath, "libb.so: cannot open shared object file: No such file or directory");
  EXPECT_EQ(fault.what, "the library libb.so, which it needs, is not found");
  EXPECT_EQ(fault.remedy, "install that library, or put it beside the bundle");
}

TEST(DescribeLoadError, NamesASymbolThatIsNotDefined) {
  const Fault fault = describeLoadError(kPath, kPath + ": undefined symbol: _ZN3abc3defEv (fatal)");
  EXPECT_EQ(fault.what,
            "it uses abc::def(), which none of the libraries that it is linked with defines");
  // A function of C has its name as it is.
  EXPECT_EQ(describeLoadError(kPath, kPath + ": undefined symbol: abc_def").what,
            "it uses abc_def, which none of the libraries that it is linked with defines");
}

TEST(DescribeLoadError, RepeatsWhatItDoesNotKnow) {
  EXPECT_EQ(describeLoadError(kPath, kPath + ": invalid ELF header").what,
            "the library cannot be loaded (/bundles/a.so: invalid ELF header)");
  EXPECT_EQ(
      describeLoadError(kPath, kPath + ": cannot open shared object file: Permission denied").what,
      "the library cannot be loaded (/bundles/a.so: cannot open shared object file: "
      "Permission denied)");
  EXPECT_FALSE(saysLackOfMemory(kPath + ": cannot allocate memory in static TLS block"));
}

TEST(DescribeLoadError, RecognizesALackOfMemory) {
  const std::vector<std::string> errors = {
      "out of memory", kPath + ": cannot create shared object descriptor",
      kPath + ": cannot create searchlist: Cannot allocate memory",
      kPath + ": cannot allocate dependency list", kPath + ": cannot extend global scope",
      kPath + ": failed to map segment from shared object",
      // Without memory for the reason.
      kPath + ": cannot open shared object file"};
  for (const std::string& error : errors) {
    EXPECT_EQ(describeLoadError(kPath, error).what,
              "the library cannot be loaded (Cannot allocate memory)")
        << error;
  }
  // Without memory for the name of the file.
  const std::string exists = TEXT_LIBRARY;
  const std::string error = ": cannot open shared object file: No such file or directory";
  EXPECT_EQ(describeLoadError(exists, exists + error).what,
            "the library cannot be loaded (Cannot allocate memory)");
  EXPECT_EQ(describeLoadError(kPath, kPath + error).what,
            "the library /bundles/a.so, which it needs, is not found");
}

TEST(DescribeLoadError, AFileThatMayNotBeMadeIsNoLackOfMemory) {
  EXPECT_FALSE(
      saysLackOfMemory("filesystem error: cannot create directory: Permission denied [/x]"));
}

}  // namespace
}  // namespace quenlith::elf

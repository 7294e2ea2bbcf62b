#include "quenlith/elf/checkBundleLibrary.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

namespace {

using quenlith::elf::checkBundleLibrary;
using quenlith::elf::Fault;
using testing::HasSubstr;

const std::string kMade = WORK_FOLDER;
// Contains a library of the needed name that was linked with an installed framework.
const std::string kNeeding = kMade + "/needing";

class CheckBundleLibrary : public testing::Test {
 protected:
  void TearDown() override { unsetenv("LD_LIBRARY_PATH"); }

  /// Checks the bundle `name`, whose own search path has a library that does not need a framework.
  static std::optional<Fault> check(const std::string& name, const std::string& libraryPath) {
    setenv("LD_LIBRARY_PATH", libraryPath.c_str(), 1);
    return checkBundleLibrary(kMade + "/" + name + ".so", "libquenlith_cppmicroservices.so.0.1");
  }
};

TEST_F(CheckBundleLibrary, FollowsTheSearchPathOfTheBundle) {
  EXPECT_FALSE(check("rpath", ""));
  EXPECT_FALSE(check("runpath", ""));
}

TEST_F(CheckBundleLibrary, PrefersTheVariableOfTheLoaderToARunpath) {
  const auto fault = check("runpath", "/missing:" + kNeeding);
  ASSERT_TRUE(fault);
  EXPECT_THAT(fault->what, HasSubstr("the library " + kNeeding + "/libneighbour.so"));
}

TEST_F(CheckBundleLibrary, PrefersAnRpathToTheVariableOfTheLoader) {
  EXPECT_FALSE(check("rpath", kNeeding));
}

TEST_F(CheckBundleLibrary, PassesOverALibraryOfAnotherMachine) {
  const std::string folder = kMade + "/other";
  std::filesystem::create_directories(folder);
  const std::string other = folder + "/libneighbour.so";
  std::filesystem::copy_file(kNeeding + "/libneighbour.so", other,
                             std::filesystem::copy_options::overwrite_existing);
  // The ELF class in the fifth byte is 1 for 32 bits.
  std::fstream(other, std::ios::binary | std::ios::in | std::ios::out).seekp(4).put('\1');
  EXPECT_FALSE(check("runpath", folder));
  EXPECT_TRUE(check("runpath", folder + ":" + kNeeding));
}

}  // namespace

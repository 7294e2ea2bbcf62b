#include "quenlith/elf/LibraryName.hpp"

#include <gtest/gtest.h>

namespace {

using quenlith::elf::Framework;
using quenlith::elf::LibraryName;

struct Row {
  const char* name;
  const char* stem;
  const char* version;
  Framework framework;
  bool isOurs;
};

const Row kRows[] = {
    {"libquenlith_model.so.0.1", "libquenlith_model", "0.1", Framework::kNone, true},
    {"libquenlith_cppmicroservices.so.0.1", "libquenlith_cppmicroservices", "0.1",
     Framework::kEmbedded, true},
    {"libCppMicroServices.so.3.8.12", "libCppMicroServices", "3.8.12", Framework::kInstalled,
     false},
    {"libCppMicroServicesd.so.3.8.12", "libCppMicroServicesd", "3.8.12", Framework::kInstalled,
     false},
    {"libusServiceComponent.so", "libusServiceComponent", "", Framework::kInstalled, false},
    {"libCppMicroServicesTools.so", "libCppMicroServicesTools", "", Framework::kNone, false},
    {"libstdc++.so.6", "libstdc++", "6", Framework::kNone, false},
    {"plugin", "plugin", "", Framework::kNone, false},
    {"", "", "", Framework::kNone, false},
};

TEST(LibraryName, IsSplitAndClassified) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    const LibraryName name(row.name);
    EXPECT_EQ(name.name, row.name);
    EXPECT_EQ(name.stem, row.stem);
    EXPECT_EQ(name.version, row.version);
    EXPECT_EQ(name.framework(), row.framework);
    EXPECT_EQ(name.isOurs(), row.isOurs);
  }
}

}  // namespace

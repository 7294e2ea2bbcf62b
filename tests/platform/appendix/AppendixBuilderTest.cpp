#include "quenlith/shared/appendix/AppendixBuilder.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace {

using quenlith::shared::appendix::AppendixBuilder;
using quenlith::shared::appendix::AppendixEntry;

TEST(AppendixBuilder, DeclaresItsInterfaceName) {
  EXPECT_EQ(us_service_interface_iid<AppendixBuilder>(),
            "quenlith::shared::appendix::AppendixBuilder");
}

TEST(AppendixBuilder, AnEntryIsEmptyByDefault) {
  const AppendixEntry entry;
  EXPECT_TRUE(entry.text.empty());
  EXPECT_FALSE(entry.marker.has_value());
}

#if defined(__GXX_ABI_VERSION)
/// Returns the index of a virtual function in the virtual table of its class.
template <typename Operation>
std::uintptr_t slotOf(Operation operation) {
  std::uintptr_t words[2];
  static_assert(sizeof operation == sizeof words);
  std::memcpy(words, &operation, sizeof words);
  return (words[0] - 1) / sizeof(void*);
}

// Bundles built elsewhere call the functions by index. The destructor takes the first two entries
// in this ABI.
TEST(AppendixBuilder, VirtualOperationsAreInTheDocumentedOrder) {
  EXPECT_EQ(slotOf(&AppendixBuilder::addEntry), 2u);
  EXPECT_EQ(slotOf(&AppendixBuilder::build), 3u);
  EXPECT_EQ(slotOf(&AppendixBuilder::findEntry), 4u);
}
#endif

}  // namespace

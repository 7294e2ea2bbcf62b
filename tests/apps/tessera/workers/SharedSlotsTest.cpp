#include "tessera/workers/SharedSlots.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdlib>
#include <fstream>

namespace {

using tessera::workers::SharedSlots;

TEST(SharedSlots, AWorkerHasItsShareOfTheMemory) {
  EXPECT_EQ(SharedSlots(1).size(), 256U);
  EXPECT_EQ(SharedSlots(4).size(), 256U);
  EXPECT_EQ(SharedSlots(8).size(), 128U);
  EXPECT_EQ(SharedSlots(1000).size(), SharedSlots::kFewestSlots);
}

/// Ends the process with status 0 if there are few slots when it may have only 32 MiB more.
[[noreturn]] void tryWithLittleAddressSpace() {
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  const rlim_t bytes = pages * 4096 + (rlim_t{32} << 20);
  const rlimit limit{bytes, bytes};
  ::setrlimit(RLIMIT_AS, &limit);
  std::_Exit(SharedSlots(1).size() == SharedSlots::kFewestSlots ? 0 : 1);
}

TEST(SharedSlots, WithLittleAddressSpaceThereAreFew) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "a sanitizer reserves more address space than there is";
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
  GTEST_SKIP() << "a sanitizer reserves more address space than there is";
#endif
#endif
  EXPECT_EXIT(tryWithLittleAddressSpace(), testing::ExitedWithCode(0), "");
}

}  // namespace

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <thread>
#include <vector>

#include "foundation/cppmicroservices/getFramework.hpp"

namespace {

using foundation::cppmicroservices::getFramework;
using foundation::cppmicroservices::setFramework;

/// Returns a distinct pointer with its own reference count. No test dereferences it, so no
/// framework needs to exist.
std::shared_ptr<cppmicroservices::Framework> makeFramework() {
  auto owner = std::make_shared<std::max_align_t>();
  auto* place = reinterpret_cast<cppmicroservices::Framework*>(owner.get());
  return {owner, place};
}

TEST(GetFramework, IsNullUntilOneIsSet) {
  EXPECT_EQ(getFramework(), nullptr);
}

TEST(GetFramework, ReturnsAndSharesTheOneThatWasSet) {
  auto framework = makeFramework();
  setFramework(framework);
  EXPECT_EQ(getFramework(), framework);
  EXPECT_EQ(framework.use_count(), 2);
  setFramework(nullptr);
  EXPECT_EQ(getFramework(), nullptr);
  EXPECT_EQ(framework.use_count(), 1);
}

/// Returns whether `found` has both the pointer and the reference count of `wanted`.
bool isWhole(const std::shared_ptr<cppmicroservices::Framework>& found,
             const std::shared_ptr<cppmicroservices::Framework>& wanted) {
  return found == wanted && !found.owner_before(wanted) && !wanted.owner_before(found);
}

TEST(GetFramework, MayBeSetWhileOtherThreadsGetIt) {
  const auto one = makeFramework();
  const auto other = makeFramework();
  setFramework(one);
  constexpr int kThreads = 4;
  std::atomic<int> running = 0;
  std::atomic<int> strangers = 0;
  std::atomic<bool> done = false;
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      ++running;
      while (!done) {
        const auto found = getFramework();
        if (!isWhole(found, one) && !isWhole(found, other)) ++strangers;
      }
    });
  }
  // All threads must call getFramework() while the framework is being set.
  while (running < kThreads) std::this_thread::yield();
  for (int i = 0; i < 100000; ++i) setFramework(i % 2 == 0 ? other : one);
  done = true;
  for (std::thread& thread : threads) thread.join();
  setFramework(nullptr);
  EXPECT_EQ(strangers, 0);
  EXPECT_EQ(one.use_count(), 1);
  EXPECT_EQ(other.use_count(), 1);
}

// Ends the process with another status when it is destroyed.
std::shared_ptr<cppmicroservices::Framework> makeEndingFramework() {
  auto owner = std::shared_ptr<std::max_align_t>(new std::max_align_t, [](auto*) { _Exit(1); });
  auto* place = reinterpret_cast<cppmicroservices::Framework*>(owner.get());
  return {owner, place};
}

TEST(GetFrameworkDeathTest, TheOneThatWasSetIsNotDestroyedAtExit) {
  EXPECT_EXIT(
      {
        setFramework(makeEndingFramework());
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <thread>
#include <vector>

#include "foundation/cppmicroservices/getFramework.hpp"

namespace {

using foundation::cppmicroservices::getFramework;
using foundation::cppmicroservices::setFramework;

/// Returns a pointer with an owner of its own that tells it from others. It is never looked
/// behind here, so no framework need be made.
std::shared_ptr<cppmicroservices::Framework> makeFramework() {
  auto owner = std::make_shared<std::max_align_t>();
  auto* place = reinterpret_cast<cppmicroservices::Framework*>(owner.get());
  return {owner, place};
}

TEST(GetFramework, IsNullUntilOneIsSet) {
  EXPECT_EQ(getFramework(), nullptr);
}

TEST(GetFramework, GivesTheOneThatWasSetAndSharesIt) {
  auto framework = makeFramework();
  setFramework(framework);
  EXPECT_EQ(getFramework(), framework);
  EXPECT_EQ(framework.use_count(), 2);
  setFramework(nullptr);
  EXPECT_EQ(getFramework(), nullptr);
  EXPECT_EQ(framework.use_count(), 1);
}

TEST(GetFramework, MayBeSetWhileOtherThreadsAsk) {
  const auto framework = makeFramework();
  std::atomic<int> strangers = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int call = 0; call < 1000; ++call) {
        const auto found = getFramework();
        if (found != nullptr && found != framework) ++strangers;
      }
    });
  }
  for (int i = 0; i < 1000; ++i) setFramework(i % 2 == 0 ? framework : nullptr);
  for (std::thread& thread : threads) thread.join();
  setFramework(nullptr);
  EXPECT_EQ(strangers, 0);
  EXPECT_EQ(framework.use_count(), 1);
}

}  // namespace

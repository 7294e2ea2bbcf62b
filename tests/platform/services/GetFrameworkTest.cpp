#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "cppmicroservices/FrameworkFactory.h"
#include "foundation/cppmicroservices/getFramework.hpp"

namespace {

using foundation::cppmicroservices::getFramework;
using foundation::cppmicroservices::setFramework;

std::shared_ptr<cppmicroservices::Framework> makeFramework() {
  return std::make_shared<cppmicroservices::Framework>(
      cppmicroservices::FrameworkFactory().NewFramework());
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

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <latch>
#include <string_view>
#include <thread>
#include <vector>

#include "foundation/log/addSink.hpp"
#include "quenlith/shared/logging/trace.hpp"

namespace {

using quenlith::shared::logging::getLogger;
using quenlith::shared::logging::kTraceSeverity;

constexpr int kThreads = 8;
constexpr int kRecordsPerThread = 500;
constexpr int kEmitters = 4;
constexpr int kRegistrations = 100;

void emitRecords() {
  for (int i = 0; i < kRecordsPerThread; ++i) quenlith::shared::logging::trace("from a thread");
}

TEST(TraceThreads, EveryRecordOfEveryThreadArrivesOnce) {
  // Not atomic: the calls of one receiver must not overlap.
  int received = 0;
  getLogger().setEnabledSeverities(kTraceSeverity);
  {
    const auto sink =
        foundation::log::addSink([&](std::uint32_t, std::string_view) { ++received; });
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) threads.emplace_back(emitRecords);
    for (std::thread& thread : threads) thread.join();
  }
  getLogger().setEnabledSeverities(0);
  EXPECT_EQ(received, kThreads * kRecordsPerThread);
}

TEST(TraceThreads, ReceiversAndSeveritiesMayChangeWhileThreadsEmit) {
  std::atomic<bool> isOver = false;
  std::vector<std::thread> threads;
  for (int i = 0; i < kEmitters; ++i) {
    threads.emplace_back([&isOver] {
      while (!isOver) quenlith::shared::logging::trace("from a thread");
    });
  }
  for (int i = 0; i < kRegistrations; ++i) {
    // Not atomic: the end of the registration must wait for the call in progress.
    bool isInside = false;
    int received = 0;
    std::latch hasBegun(1);
    {
      getLogger().setEnabledSeverities(kTraceSeverity);
      const auto sink = foundation::log::addSink([&](std::uint32_t, std::string_view) {
        isInside = true;
        if (++received == 1) hasBegun.count_down();
        std::this_thread::yield();
        isInside = false;
      });
      // The registration ends while the first call or one of the next is in progress.
      hasBegun.wait();
      if (i % 2 == 0) getLogger().setEnabledSeverities(0);
    }
    EXPECT_FALSE(isInside);
    const int before = received;
    std::this_thread::yield();
    EXPECT_EQ(received, before);
  }
  isOver = true;
  for (std::thread& thread : threads) thread.join();
  getLogger().setEnabledSeverities(0);
}

TEST(TraceThreads, TheEndOfARegistrationWaitsForTheCallInProgress) {
  std::latch hasBegun(1);
  std::atomic<bool> hasEnded = false;
  std::thread emitter;
  getLogger().setEnabledSeverities(kTraceSeverity);
  {
    const auto sink = foundation::log::addSink([&](std::uint32_t, std::string_view) {
      hasBegun.count_down();
      // Time for a registration that does not wait.
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
      hasEnded = true;
    });
    emitter = std::thread([] { quenlith::shared::logging::trace("from a thread"); });
    hasBegun.wait();
  }
  EXPECT_TRUE(hasEnded);
  emitter.join();
  getLogger().setEnabledSeverities(0);
}

}  // namespace

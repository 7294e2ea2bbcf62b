#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "foundation/log/addSink.hpp"
#include "quenlith/shared/logging/trace.hpp"

namespace {

using quenlith::shared::logging::getLogger;
using quenlith::shared::logging::kTraceSeverity;

constexpr int kThreads = 8;
constexpr int kRecordsPerThread = 500;

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
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) threads.emplace_back(emitRecords);
  int received = 0;
  for (int i = 0; i < 100; ++i) {
    const auto sink =
        foundation::log::addSink([&](std::uint32_t, std::string_view) { ++received; });
    getLogger().setEnabledSeverities(i % 2 == 0 ? kTraceSeverity : 0);
  }
  for (std::thread& thread : threads) thread.join();
  // No record arrives after the registrations have ended.
  const int before = received;
  getLogger().setEnabledSeverities(kTraceSeverity);
  quenlith::shared::logging::trace("late");
  getLogger().setEnabledSeverities(0);
  EXPECT_EQ(received, before);
}

}  // namespace

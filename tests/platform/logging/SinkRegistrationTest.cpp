#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "foundation/log/addSink.hpp"
#include "platform/logging/BoostCore.hpp"
#include "quenlith/shared/logging/trace.hpp"

namespace {

using foundation::log::addSink;
using foundation::log::SinkRegistration;
using quenlith::shared::logging::getLogger;
using quenlith::shared::logging::kTraceSeverity;
using quenlith::shared::logging::trace;
using testing::ElementsAre;
using testing::IsEmpty;

class SinkRegistrationTest : public testing::Test {
 protected:
  void SetUp() override { getLogger().setEnabledSeverities(kTraceSeverity); }
  void TearDown() override { getLogger().setEnabledSeverities(0); }

  SinkRegistration collectInto(std::vector<std::string>& messages) {
    return addSink(
        [&](std::uint32_t, std::string_view message) { messages.emplace_back(message); });
  }
};

TEST_F(SinkRegistrationTest, EndsTheDeliveryWhenItIsDestroyed) {
  std::vector<std::string> messages;
  {
    const SinkRegistration sink = collectInto(messages);
    trace("kept");
  }
  trace("lost");
  EXPECT_THAT(messages, ElementsAre("kept"));
}

TEST_F(SinkRegistrationTest, MovesWithItsReceiver) {
  std::vector<std::string> messages;
  SinkRegistration first = collectInto(messages);
  SinkRegistration second(std::move(first));
  trace("once");
  EXPECT_THAT(messages, ElementsAre("once"));
}

TEST_F(SinkRegistrationTest, AssigningReleasesTheEarlierReceiver) {
  std::vector<std::string> old;
  std::vector<std::string> fresh;
  SinkRegistration sink = collectInto(old);
  sink = collectInto(fresh);
  trace("one");
  EXPECT_THAT(old, IsEmpty());
  EXPECT_THAT(fresh, ElementsAre("one"));
}

TEST_F(SinkRegistrationTest, KeepsItsReceiverWhenAssignedToItself) {
  std::vector<std::string> messages;
  SinkRegistration sink = collectInto(messages);
  SinkRegistration& alias = sink;
  sink = std::move(alias);
  trace("one");
  EXPECT_THAT(messages, ElementsAre("one"));
}

TEST_F(SinkRegistrationTest, EveryReceiverGetsEveryRecord) {
  std::vector<std::string> left;
  std::vector<std::string> right;
  const SinkRegistration first = collectInto(left);
  const SinkRegistration second = collectInto(right);
  trace("both");
  EXPECT_THAT(left, ElementsAre("both"));
  EXPECT_THAT(right, ElementsAre("both"));
}

TEST_F(SinkRegistrationTest, ExceptionsOfAReceiverReachTheEmitter) {
  const SinkRegistration sink =
      addSink([](std::uint32_t, std::string_view) { throw std::runtime_error("full"); });
  EXPECT_THROW(trace("any"), std::runtime_error);
}

TEST_F(SinkRegistrationTest, AReceiverMayEndItsOwnRegistration) {
  int calls = 0;
  SinkRegistration sink;
  sink = addSink([&](std::uint32_t, std::string_view) {
    ++calls;
    sink = {};
  });
  trace("first");
  trace("second");
  EXPECT_EQ(calls, 1);
}

TEST_F(SinkRegistrationTest, ARecordInDeliveryIsNotDeliveredAfterTheRegistrationEnds) {
  int calls = 0;
  SinkRegistration later;
  const SinkRegistration first = addSink([&](std::uint32_t, std::string_view) { later = {}; });
  later = addSink([&](std::uint32_t, std::string_view) { ++calls; });
  trace("one");
  EXPECT_EQ(calls, 0);
}

TEST_F(SinkRegistrationTest, RecordsWithoutASeverityAreNotDelivered) {
  std::vector<std::string> messages;
  const SinkRegistration sink = collectInto(messages);
  boost_core::emitForeignRecord();
  EXPECT_THAT(messages, IsEmpty());
}

TEST_F(SinkRegistrationTest, RecordsAreDeliveredWithoutAFlush) {
  std::vector<std::string> messages;
  const SinkRegistration sink = collectInto(messages);
  trace("at once");
  EXPECT_THAT(messages, ElementsAre("at once"));
  boost_core::flush();
  EXPECT_THAT(messages, ElementsAre("at once"));
}

}  // namespace

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ios>
#include <locale>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/log/addSink.hpp"
#include "platform/logging/BoostCore.hpp"
#include "quenlith/shared/logging/trace.hpp"
#include "support/FailingAllocations.hpp"

namespace {

using foundation::log::addSink;
using quenlith::shared::logging::getLogger;
using quenlith::shared::logging::kTraceSeverity;
using quenlith::shared::logging::trace;
using quenlith::shared::logging::traceWith;
using testing::ElementsAre;
using testing::IsEmpty;

bool lockIsFree() {
  if (!getLogger().lock().mutex.try_lock()) return false;
  getLogger().lock().mutex.unlock();
  return true;
}

/// Collects the records of a test, with the severity of progress records enabled.
class DiagnosticLogger : public testing::Test {
 protected:
  void SetUp() override { getLogger().setEnabledSeverities(kTraceSeverity); }
  void TearDown() override {
    getLogger().setEnabledSeverities(0);
    boost_core::setEnabled(true);
    boost_core::resetFilter();
  }

  std::uint64_t locksTaken() const { return getLogger().lock().acquisitions - locksBefore; }

  std::uint64_t locksBefore = getLogger().lock().acquisitions;
  std::vector<std::string> messages;
  std::vector<std::uint32_t> severities;
  foundation::log::SinkRegistration sink =
      addSink([this](std::uint32_t severity, std::string_view message) {
        severities.push_back(severity);
        messages.emplace_back(message);
      });
};

TEST(DiagnosticLoggerMask, EnablesNothingAtFirst) {
  EXPECT_EQ(getLogger().enabledSeverities(), 0u);
}

TEST(DiagnosticLoggerMask, HasFifteenSignificantBits) {
  foundation::log::basic_diagnostic_logger<char> logger;
  logger.setEnabledSeverities(0xFFFFFFFFu);
  EXPECT_TRUE(logger.isEnabled(0x4000));
  EXPECT_FALSE(logger.isEnabled(0x8000));
  logger.setEnabledSeverities(0xFFFFFFFFu & ~8u);
  EXPECT_FALSE(logger.isEnabled(8));
  EXPECT_TRUE(logger.isEnabled(4));
}

TEST(DiagnosticLoggerMask, BelongsToOneSharedLogger) {
  EXPECT_EQ(&getLogger(), &getLogger());
}

TEST_F(DiagnosticLogger, EmitsTheMessageAtSeverityEight) {
  trace("Checking if parse as task");
  EXPECT_THAT(messages, ElementsAre("Checking if parse as task"));
  EXPECT_THAT(severities, ElementsAre(8u));
  EXPECT_EQ(locksTaken(), 1u);
}

TEST_F(DiagnosticLogger, EmitsAnEmptyMessageToo) {
  trace("");
  EXPECT_THAT(messages, ElementsAre(""));
}

TEST_F(DiagnosticLogger, KeepsEveryByteOfAMessage) {
  const std::string message("a\0b\n\xC3\xA4", 6);
  trace(message);
  EXPECT_THAT(messages, ElementsAre(message));
}

TEST_F(DiagnosticLogger, WritesCountsAsPlainDecimals) {
  for (const int count : {0, 1, 12, 1234567})
    traceWith([&](std::ostream& out) {
      out << "Found " << count << " non default code element parsers";
    });
  EXPECT_THAT(messages, ElementsAre("Found 0 non default code element parsers",
                                    "Found 1 non default code element parsers",
                                    "Found 12 non default code element parsers",
                                    "Found 1234567 non default code element parsers"));
}

TEST_F(DiagnosticLogger, DoesNotGroupDigitsAsTheGlobalLocaleDoes) {
  struct Grouping : std::numpunct<char> {
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const std::locale before = std::locale::global(std::locale(std::locale(), new Grouping));
  traceWith([](std::ostream& out) { out << 1234567; });
  std::locale::global(before);
  EXPECT_THAT(messages, ElementsAre("1234567"));
}

TEST_F(DiagnosticLogger, FormatFlagsOfOneRecordDoNotReachTheNext) {
  traceWith([](std::ostream& out) { out << std::hex << 255; });
  traceWith([](std::ostream& out) { out << 255; });
  EXPECT_THAT(messages, ElementsAre("ff", "255"));
}

TEST_F(DiagnosticLogger, AMessageIsCompleteOrThereIsNoRecord) {
  const std::string message(1000, 'x');
  trace(message);
  messages.reserve(2);
  severities.reserve(2);
  const std::size_t failed = quenlith::test::failEachAllocation(
      [&] { trace(message); }, [&] { ASSERT_THAT(messages, ElementsAre(message)); });
  EXPECT_GT(failed, 2u);
  EXPECT_THAT(messages, ElementsAre(message, message));
}

TEST_F(DiagnosticLogger, AStreamThatAWriterLetsFailEndsTheMessage) {
  traceWith([](std::ostream& out) {
    out << "begin";
    out.setstate(std::ios_base::badbit);
    out << "end";
  });
  trace("next");
  EXPECT_THAT(messages, ElementsAre("begin", "next"));
}

TEST_F(DiagnosticLogger, WithTheBitClearNothingIsFormattedAndNoLockTaken) {
  getLogger().setEnabledSeverities(~kTraceSeverity);
  bool formatted = false;
  bool filtered = false;
  boost_core::setFilter([&] { return filtered = true; });
  trace("unseen");
  traceWith([&](std::ostream&) { formatted = true; });
  EXPECT_THAT(messages, IsEmpty());
  EXPECT_FALSE(formatted);
  EXPECT_FALSE(filtered);
  EXPECT_EQ(locksTaken(), 0u);
}

TEST_F(DiagnosticLogger, WithTheCoreDisabledNoLockIsTakenAndNothingFormatted) {
  boost_core::setEnabled(false);
  bool formatted = false;
  traceWith([&](std::ostream&) { formatted = true; });
  EXPECT_FALSE(formatted);
  EXPECT_EQ(locksTaken(), 0u);
}

TEST_F(DiagnosticLogger, ARecordThatTheFilterRefusesIsNotFormatted) {
  boost_core::setFilter([] { return false; });
  bool formatted = false;
  traceWith([&](std::ostream&) { formatted = true; });
  EXPECT_FALSE(formatted);
  EXPECT_EQ(locksTaken(), 1u);
  EXPECT_TRUE(lockIsFree());
}

TEST_F(DiagnosticLogger, ARecordThatNoSinkWantsIsNotFormatted) {
  sink = {};
  bool formatted = false;
  traceWith([&](std::ostream&) { formatted = true; });
  EXPECT_FALSE(formatted);
}

TEST_F(DiagnosticLogger, TheLockCoversTheOpeningOnly) {
  bool freeWhileOpening = true;
  bool freeWhileFormatting = false;
  bool freeWhilePushing = false;
  boost_core::setFilter([&] {
    freeWhileOpening = lockIsFree();
    return true;
  });
  const auto watcher =
      addSink([&](std::uint32_t, std::string_view) { freeWhilePushing = lockIsFree(); });
  traceWith([&](std::ostream&) { freeWhileFormatting = lockIsFree(); });
  EXPECT_FALSE(freeWhileOpening);
  EXPECT_TRUE(freeWhileFormatting);
  EXPECT_TRUE(freeWhilePushing);
}

TEST_F(DiagnosticLogger, ReleasesTheLockWhenOpeningThrows) {
  boost_core::setFilter([]() -> bool { throw std::runtime_error("filter"); });
  EXPECT_THROW(trace("never opened"), std::runtime_error);
  EXPECT_EQ(locksTaken(), 1u);
  EXPECT_TRUE(lockIsFree());
}

TEST_F(DiagnosticLogger, ARecordWhoseFormattingThrowsIsDropped) {
  EXPECT_THROW(traceWith([](std::ostream& out) {
                 out << "half";
                 throw std::runtime_error("format");
               }),
               std::runtime_error);
  EXPECT_THAT(messages, IsEmpty());
  trace("next");
  EXPECT_THAT(messages, ElementsAre("next"));
}

TEST_F(DiagnosticLogger, AFailureThatAWriterThrowsItselfDropsTheRecord) {
  EXPECT_THROW(traceWith([](std::ostream& out) {
                 out << "half";
                 throw std::ios_base::failure("another stream");
               }),
               std::ios_base::failure);
  EXPECT_THAT(messages, IsEmpty());
}

TEST_F(DiagnosticLogger, AnEmissionDuringUnwindingIsPushed) {
  struct Farewell {
    ~Farewell() { trace("unwinding"); }
  };
  try {
    const Farewell farewell;
    throw std::runtime_error("outer");
  } catch (const std::runtime_error&) {
  }
  EXPECT_THAT(messages, ElementsAre("unwinding"));
}

TEST_F(DiagnosticLogger, AThrowWhileFormattingDuringUnwindingDropsThatRecordOnly) {
  struct Farewell {
    ~Farewell() {
      try {
        traceWith([](std::ostream&) { throw std::logic_error("inner"); });
      } catch (const std::logic_error&) {
        trace("after inner");
      }
    }
  };
  try {
    const Farewell farewell;
    throw std::runtime_error("outer");
  } catch (const std::runtime_error&) {
  }
  EXPECT_THAT(messages, ElementsAre("after inner"));
}

TEST_F(DiagnosticLogger, AFormatterMayEmitAnotherRecord) {
  traceWith([](std::ostream& out) {
    trace("inner");
    out << "outer";
  });
  EXPECT_THAT(messages, ElementsAre("inner", "outer"));
}

TEST_F(DiagnosticLogger, DestroyingALoggerKeepsTheSinksOfOthers) {
  { foundation::log::basic_diagnostic_logger<char> shortLived; }
  trace("still there");
  EXPECT_THAT(messages, ElementsAre("still there"));
}

}  // namespace

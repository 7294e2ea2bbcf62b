#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <boost/log/core.hpp>
#include <boost/log/sources/record_ostream.hpp>
#include <boost/log/sources/severity_feature.hpp>

#include "contract/RecordedLog.hpp"
#include "foundation/log/RecordSource.hpp"
#include "foundation/log/basic_diagnostic_logger.hpp"
#include "quenlith/shared/logging/getLogger.hpp"

namespace {

using contract::RecordedLog;
using quenlith::shared::logging::getLogger;
using Logger = foundation::log::basic_diagnostic_logger<char>;
using StreamProvider = boost::log::aux::stream_provider<char>;
using Messages = std::vector<std::string>;

static_assert(std::is_same_v<decltype(getLogger()), Logger&>);

constexpr std::uint32_t kSeverity = 8;

boost::log::record openRecord() {
  Logger& logger = getLogger();
  AcquireSRWLockExclusive(&logger.lock());
  boost::log::sources::aux::get_severity_level() = kSeverity;
  boost::log::record record = logger.source().core->open_record(logger.source().attributes);
  ReleaseSRWLockExclusive(&logger.lock());
  return record;
}

bool isEnabled() {
  return (getLogger().enabledSeverities() & kSeverity & 0x7FFFU) != 0 &&
         getLogger().source().core->get_logging_enabled();
}

// Writes `text` and `count` into one record.
void emit(const char* text, int count) {
  if (!isEnabled()) return;
  boost::log::record record = openRecord();
  if (!record) return;
  StreamProvider::stream_compound* const compound = StreamProvider::allocate_compound(record);
  compound->stream << text << count;
  compound->stream.flush();
  getLogger().source().core->push_record(std::move(record));
  StreamProvider::release_compound(compound);
}

TEST(LoggerContract, ThereIsOneLogger) {
  EXPECT_EQ(&getLogger(), &getLogger());
  EXPECT_EQ(getLogger().source().core, boost::log::core::get());
}

TEST(LoggerContract, ARecordWrittenInPlaceReachesTheSinks) {
  const RecordedLog log;
  emit("Found ", 12);
  emit("Found ", 0);
  ASSERT_EQ(log.messages(), (Messages{"Found 12", "Found 0"}));
  EXPECT_EQ(log.records()[0].severity, kSeverity);
}

TEST(LoggerContract, AClearBitMeansThatNoRecordIsMade) {
  const RecordedLog log;
  RecordedLog::enable(false);
  EXPECT_FALSE(isEnabled());
  emit("never", 1);
  RecordedLog::enable(true);
  EXPECT_TRUE(isEnabled());
  EXPECT_TRUE(log.messages().empty());
}

}  // namespace

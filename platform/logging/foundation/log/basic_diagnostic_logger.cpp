#include "foundation/log/basic_diagnostic_logger.hpp"

#include <atomic>
#include <boost/log/attributes/attribute_set.hpp>
#include <boost/log/attributes/function.hpp>
#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/sinks/sink.hpp>
#include <boost/log/sources/record_ostream.hpp>
#include <boost/log/sources/severity_feature.hpp>
#include <boost/smart_ptr/make_shared.hpp>
#include <exception>
#include <locale>
#include <mutex>
#include <string>
#include <utility>

#include "foundation/log/RecordSource.hpp"
#include "foundation/log/addSink.hpp"

// Only this source includes Boost.Log, because its headers take half a minute to lint.

namespace foundation::log {
namespace {

namespace blog = boost::log;

constexpr const char* kSeverityAttribute = "Severity";
constexpr const char* kMessageAttribute = "Message";

/// Passes records to a receiver, one at a time, until it is stopped; then it rejects them.
class DeliveringSink : public blog::sinks::sink {
 public:
  explicit DeliveringSink(Receiver receiver) : sink(false), receiver(std::move(receiver)) {}

  bool will_consume(const blog::attribute_value_set& values) override {
    return active && !!values[kSeverityAttribute].extract<std::uint32_t>();
  }

  void consume(const blog::record_view& record) override {
    const std::lock_guard guard(delivery);
    if (!active) return;
    const auto severity = record[kSeverityAttribute].extract<std::uint32_t>();
    const auto message = record[kMessageAttribute].extract<std::string>();
    receiver(severity.get(), message.get());
  }

  void flush() override {}

  /// Waits for a call of the receiver in progress on another thread; none follows.
  void stop() noexcept {
    const std::lock_guard guard(delivery);
    active = false;
  }

 private:
  Receiver receiver;
  // Recursive, because a receiver may emit a record or destroy its own registration.
  std::recursive_mutex delivery;
  std::atomic<bool> active{true};
};

/// Makes a sink that rejects every record. Without any sink the core would write all records to the
/// console; with this one it does not even open records that no other sink accepts.
boost::shared_ptr<DeliveringSink> makeRejectingSink() {
  auto sink = boost::make_shared<DeliveringSink>(Receiver());
  sink->stop();
  return sink;
}

/// Locks an SRWLOCK for a scope.
class LockHolder {
 public:
  explicit LockHolder(SRWLOCK& lock) : lock(lock) { AcquireSRWLockExclusive(&lock); }
  ~LockHolder() { ReleaseSRWLockExclusive(&lock); }
  LockHolder(const LockHolder&) = delete;
  LockHolder& operator=(const LockHolder&) = delete;

 private:
  SRWLOCK& lock;
};

using StreamProvider = blog::aux::stream_provider<char>;

struct StreamReleaser {
  void operator()(StreamProvider::stream_compound* compound) const noexcept {
    StreamProvider::release_compound(compound);
  }
};

/// The stream of one open record. The destructor pushes the record, unless it runs because of an
/// exception that was thrown during the stream's lifetime.
class RecordStream {
 public:
  RecordStream(blog::core& core, blog::record& record)
      : core(core),
        exceptionsInFlight(std::uncaught_exceptions()),
        compound(StreamProvider::allocate_compound(record)) {
    compound->stream.imbue(std::locale::classic());
  }

  // Not noexcept: pushing calls the sinks, and their exceptions must reach the caller.
  ~RecordStream() noexcept(false) {
    if (std::uncaught_exceptions() > exceptionsInFlight) return;
    compound->stream.flush();
    core.push_record(std::move(compound->stream.get_record()));
  }

  RecordStream(const RecordStream&) = delete;
  RecordStream& operator=(const RecordStream&) = delete;

  std::ostream& out() { return compound->stream.stream(); }

 private:
  blog::core& core;
  int exceptionsInFlight;
  std::unique_ptr<StreamProvider::stream_compound, StreamReleaser> compound;
};

blog::attribute_set makeAttributes() {
  blog::attribute_set attributes;
  attributes[kSeverityAttribute] = blog::attributes::make_function(
      [] { return static_cast<std::uint32_t>(blog::sources::aux::get_severity_level()); });
  return attributes;
}

}  // namespace

struct basic_diagnostic_logger<char>::Backend {
  RecordSource source{blog::core::get(), makeAttributes()};
  boost::shared_ptr<DeliveringSink> rejectingSink = makeRejectingSink();
};

basic_diagnostic_logger<char>::basic_diagnostic_logger() : backend(std::make_unique<Backend>()) {
  backend->source.core->add_sink(backend->rejectingSink);
  // The first record creates the core's state of this thread and its shared tables. Opening one
  // here creates them before other threads emit records.
  blog::sources::aux::get_severity_level() = 0;
  backend->source.core->open_record(backend->source.attributes);
}

basic_diagnostic_logger<char>::~basic_diagnostic_logger() {
  backend->source.core->remove_sink(backend->rejectingSink);
}

const RecordSource& basic_diagnostic_logger<char>::source() const noexcept {
  return backend->source;
}

void basic_diagnostic_logger<char>::emit(std::uint32_t severity, std::string_view message) {
  const auto write = [message](std::ostream& out) { out << message; };
  emit(severity, MessageWriter(write));
}

void basic_diagnostic_logger<char>::emit(std::uint32_t severity, MessageWriter writer) {
  blog::core& core = *backend->source.core;
  if (!core.get_logging_enabled()) return;
  blog::record record;
  {
    const LockHolder holder(openingLock);
    blog::sources::aux::get_severity_level() = severity;
    record = core.open_record(backend->source.attributes);
  }
  if (!record) return;
  RecordStream stream(core, record);
  writer(stream.out());
}

struct SinkRegistration::Sink {
  boost::shared_ptr<DeliveringSink> delivering;
};

SinkRegistration::SinkRegistration() noexcept = default;
SinkRegistration::SinkRegistration(std::unique_ptr<Sink> sink) noexcept : sink(std::move(sink)) {}
SinkRegistration::SinkRegistration(SinkRegistration&& other) noexcept = default;
SinkRegistration::~SinkRegistration() {
  remove();
}

SinkRegistration& SinkRegistration::operator=(SinkRegistration&& other) noexcept {
  // Moves through a temporary, so that self-assignment keeps the receiver.
  SinkRegistration moved(std::move(other));
  sink.swap(moved.sink);
  return *this;
}

void SinkRegistration::remove() noexcept {
  if (!sink) return;
  blog::core::get()->remove_sink(sink->delivering);
  sink->delivering->stop();
}

SinkRegistration addSink(Receiver receiver) {
  auto sink = std::make_unique<SinkRegistration::Sink>();
  sink->delivering = boost::make_shared<DeliveringSink>(std::move(receiver));
  blog::core::get()->add_sink(sink->delivering);
  return SinkRegistration(std::move(sink));
}

}  // namespace foundation::log

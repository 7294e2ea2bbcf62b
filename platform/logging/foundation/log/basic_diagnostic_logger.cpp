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

// Only this source includes Boost.Log: its headers take half a minute of every lint run.

namespace foundation::log {
namespace {

namespace blog = boost::log;

constexpr const char* kSeverityAttribute = "Severity";
constexpr const char* kMessageAttribute = "Message";

/// Gives records to a receiver, one after the other, until it is stopped; then it refuses them.
class DeliveringSink : public blog::sinks::sink {
 public:
  explicit DeliveringSink(Receiver receiving) : sink(false), receiver(std::move(receiving)) {}

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

  /// Waits for a delivery under way on another thread; none follows.
  void stop() noexcept {
    const std::lock_guard guard(delivery);
    active = false;
  }

 private:
  Receiver receiver;
  // Recursive, since a receiver may emit a record or give up its own registration.
  std::recursive_mutex delivery;
  std::atomic<bool> active{true};
};

/// Makes a sink that takes no record. While it stands, records that no sink wants are not
/// opened; without any sink the core would write them to the console.
boost::shared_ptr<DeliveringSink> makeRefusingSink() {
  auto sink = boost::make_shared<DeliveringSink>(Receiver());
  sink->stop();
  return sink;
}

/// Holds a lock of the slim kind for a scope.
class LockHolder {
 public:
  explicit LockHolder(SRWLOCK& held) : lock(held) { AcquireSRWLockExclusive(&lock); }
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

/// The stream of one open record; pushes the record when it ends, unless an exception began
/// after it was made.
class RecordStream {
 public:
  RecordStream(blog::core& target, blog::record& record)
      : core(target),
        exceptionsInFlight(std::uncaught_exceptions()),
        compound(StreamProvider::allocate_compound(record)) {
    compound->stream.imbue(std::locale::classic());
  }

  // Pushing gives the record to the sinks, and what they throw is the caller's to know.
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
  boost::shared_ptr<DeliveringSink> refusingSink = makeRefusingSink();
};

basic_diagnostic_logger<char>::basic_diagnostic_logger() : backend(std::make_unique<Backend>()) {
  backend->source.core->add_sink(backend->refusingSink);
  // The first record makes the core's state of this thread and its shared tables: doing it
  // here keeps that out of the reach of threads that start later.
  blog::sources::aux::get_severity_level() = 0;
  backend->source.core->open_record(backend->source.attributes);
}

basic_diagnostic_logger<char>::~basic_diagnostic_logger() {
  backend->source.core->remove_sink(backend->refusingSink);
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
SinkRegistration::SinkRegistration(std::unique_ptr<Sink> registered) noexcept
    : sink(std::move(registered)) {}
SinkRegistration::SinkRegistration(SinkRegistration&& other) noexcept = default;
SinkRegistration::~SinkRegistration() {
  remove();
}

SinkRegistration& SinkRegistration::operator=(SinkRegistration&& other) noexcept {
  // By way of a third object, so that an object assigned to itself keeps its receiver.
  SinkRegistration taken(std::move(other));
  sink.swap(taken.sink);
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

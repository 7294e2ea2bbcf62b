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
#include <ios>
#include <locale>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "foundation/log/RecordSource.hpp"
#include "foundation/log/addSink.hpp"

// Only this source includes Boost.Log, because its headers take half a minute to lint.

namespace foundation::log {
namespace {

namespace blog = boost::log;

constexpr const char* kSeverityAttribute = "Severity";
constexpr const char* kMessageAttribute = "Message";

/// A receiver, and whether it is still registered.
struct Registration {
  Receiver receiver;
  bool isActive = true;
};

using Registrations = std::vector<std::shared_ptr<Registration>>;

/// The one sink of this library: it passes each record to the receivers, one record at a time.
///
/// It is added to the core for good, and receivers come and go in a list here. The core's records
/// refer weakly to their sinks, so the last reference to a sink can be released inside the core,
/// where a thread sanitizer does not see it: it would report the destruction of a sink as a race
/// with the threads that emit.
///
/// Without any sink the core would write all records to the console. While there is no receiver,
/// this one rejects all records, and the core does not even open them.
class DeliveringSink : public blog::sinks::sink {
 public:
  DeliveringSink() : sink(false) {}

  void add(const std::shared_ptr<Registration>& registration) {
    const std::lock_guard guard(delivery);
    registrations.push_back(registration);
    hasReceivers = true;
  }

  /// Waits for a delivery in progress on another thread.
  void remove(const std::shared_ptr<Registration>& registration) noexcept {
    const std::lock_guard guard(delivery);
    registration->isActive = false;
    std::erase(registrations, registration);
    hasReceivers = !registrations.empty();
  }

  bool will_consume(const blog::attribute_value_set& values) override {
    return hasReceivers && !!values[kSeverityAttribute].extract<std::uint32_t>();
  }

  void consume(const blog::record_view& record) override {
    const auto severity = record[kSeverityAttribute].extract<std::uint32_t>();
    const auto message = record[kMessageAttribute].extract<std::string>();
    const std::lock_guard guard(delivery);
    // A copy, because a receiver may add and remove receivers.
    for (const Registrations copy = registrations; const auto& registration : copy) {
      if (registration->isActive) registration->receiver(severity.get(), message.get());
    }
  }

  void flush() override {}

 private:
  Registrations registrations;
  // Recursive, because a receiver may emit a record or destroy its own registration.
  std::recursive_mutex delivery;
  std::atomic<bool> hasReceivers{false};
};

/// Keeps the sink in the core until this library is unloaded.
class SharedSink {
 public:
  SharedSink() { core->add_sink(sink); }
  ~SharedSink() { core->remove_sink(sink); }
  SharedSink(const SharedSink&) = delete;
  SharedSink& operator=(const SharedSink&) = delete;

  const boost::shared_ptr<DeliveringSink>& get() const { return sink; }

 private:
  blog::core_ptr core = blog::core::get();
  boost::shared_ptr<DeliveringSink> sink = boost::make_shared<DeliveringSink>();
};

const boost::shared_ptr<DeliveringSink>& sharedSink() {
  static const SharedSink shared;
  return shared.get();
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
    core.push_record(std::move(compound->stream.get_record()));
  }

  RecordStream(const RecordStream&) = delete;
  RecordStream& operator=(const RecordStream&) = delete;

  /// Lets `writer` write the message. Throws std::bad_alloc without memory for it.
  void write(MessageWriter writer) {
    std::ostream& out = compound->stream.stream();
    const ErrorsThrown thrown(out);
    try {
      writer(out);
      out.flush();
    } catch (const std::ios_base::failure&) {
      // A writer may let the stream fail, for example with a null pointer: that ends the message.
      if (!out.bad()) throw;
    }
  }

 private:
  /// By itself, a stream catches what is thrown while it formats, and cuts the message.
  class ErrorsThrown {
   public:
    explicit ErrorsThrown(std::ostream& out) : out(out) { out.exceptions(std::ios_base::badbit); }
    ~ErrorsThrown() { out.exceptions(std::ios_base::goodbit); }
    ErrorsThrown(const ErrorsThrown&) = delete;
    ErrorsThrown& operator=(const ErrorsThrown&) = delete;

   private:
    std::ostream& out;
  };

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
};

basic_diagnostic_logger<char>::basic_diagnostic_logger() : backend(std::make_unique<Backend>()) {
  sharedSink();
  // The first record creates the core's state of this thread and its shared tables. Opening one
  // here creates them before other threads emit records.
  blog::sources::aux::get_severity_level() = 0;
  backend->source.core->open_record(backend->source.attributes);
}

basic_diagnostic_logger<char>::~basic_diagnostic_logger() = default;

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
  stream.write(writer);
}

struct SinkRegistration::Sink {
  // Also keeps the sink of a registration that outlives this library's static objects.
  boost::shared_ptr<DeliveringSink> delivering = sharedSink();
  std::shared_ptr<Registration> registration;
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
  if (sink) sink->delivering->remove(sink->registration);
}

SinkRegistration addSink(Receiver receiver) {
  auto sink = std::make_unique<SinkRegistration::Sink>();
  sink->registration = std::make_shared<Registration>(Registration{std::move(receiver)});
  sink->delivering->add(sink->registration);
  return SinkRegistration(std::move(sink));
}

}  // namespace foundation::log

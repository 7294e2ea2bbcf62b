#include "harness/Contest.hpp"

#include <pthread.h>

#include <algorithm>
#include <exception>
#include <stdexcept>

#include "harness/countInstructions.hpp"
#include "harness/processorSeconds.hpp"

namespace bench {

namespace {

RunTimes timesOf(Subject& subject) {
  const double begin = processorSeconds();
  subject.build();
  const double built = processorSeconds();
  subject.check();
  const double checked = processorSeconds();
  subject.destroy();
  return {built - begin, processorSeconds() - checked};
}

struct Work {
  const std::function<void()>& function;
  std::exception_ptr error;
};

void* doWork(void* argument) {
  auto& work = *static_cast<Work*>(argument);
  try {
    work.function();
  } catch (...) {
    work.error = std::current_exception();
  }
  return nullptr;
}

/// Calls `function` in a new thread, whose end empties the allocator's cache of freed blocks, which
/// would be counted as live. Not a std::thread, which itself allocates.
void runInNewThread(const std::function<void()>& function) {
  Work work{function, nullptr};
  pthread_t thread{};
  if (pthread_create(&thread, nullptr, doWork, &work) != 0) {
    throw std::runtime_error("no thread can be made");
  }
  pthread_join(thread, nullptr);
  if (work.error != nullptr) std::rethrow_exception(work.error);
}

}  // namespace

void Contest::add(const std::string& name, const Corpus& corpus, const Make& make) {
  if (!takes(name)) return;
  entries.push_back({make(corpus), {}});
  Entry& entry = entries.back();
  entry.measurement.name = name;
  entry.measurement.lines = corpus.lineCount();
  entry.measurement.utf8Bytes = corpus.byteCount();
  rounds.add(name, [&entry] { return timesOf(*entry.subject); });
}

void Contest::run(int roundCount) {
  rounds.run(roundCount);
  for (Entry& entry : entries) {
    const RunTimes& best = rounds.best(entry.measurement.name);
    entry.measurement.buildSeconds = best.seconds;
    entry.measurement.destroySeconds = best.endSeconds;
  }
  // Last, because the standard library counts references atomically once a second thread started.
  for (Entry& entry : entries) measureMemory(entry);
}

void Contest::count() {
  for (Entry& entry : entries) {
    const Measurement& measurement = entry.measurement;
    warmUp(*entry.subject);
    countInstructions(*entry.subject, measurement.name + '|' + std::to_string(measurement.lines));
  }
}

void Contest::measureMemory(Entry& entry) {
  // The first build allocates what is kept for the life of the process.
  runInNewThread([&entry] { buildCounted(entry); });
  const std::size_t before = liveBytes();
  runInNewThread([&entry] { buildCounted(entry); });
  expectCount(entry.measurement.name + ", bytes live after the end", liveBytes(), before);
}

void Contest::buildCounted(Entry& entry) {
  const std::size_t before = liveBytes();
  startCounting();
  entry.subject->build();
  entry.measurement.allocated = stopCounting();
  const std::size_t built = liveBytes();
  entry.measurement.liveBytes = built > before ? built - before : 0;
  entry.subject->check();
  entry.subject->destroy();
}

const Measurement& Contest::of(const std::string& name) const {
  for (const Entry& entry : entries) {
    if (entry.measurement.name == name) return entry.measurement;
  }
  throw std::out_of_range("no subject is named " + name);
}

void Contest::forEach(const std::function<void(const Measurement&)>& take) const {
  for (const Entry& entry : entries) take(entry.measurement);
}

bool Contest::has(const std::string& name) const noexcept {
  return std::any_of(entries.begin(), entries.end(),
                     [&name](const Entry& entry) { return entry.measurement.name == name; });
}

}  // namespace bench

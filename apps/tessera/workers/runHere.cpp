#include "tessera/workers/runHere.hpp"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <string_view>
#include <system_error>
#include <thread>

namespace tessera::workers {
namespace {

class CollectedOutput final : public files::OutputText {
 public:
  explicit CollectedOutput(Collector& collector) : collector(collector) {}

 private:
  void write(std::string_view piece) override { collector.addText(piece); }

  Collector& collector;
};

class CollectedMessages final : public Messages {
 public:
  CollectedMessages(Collector& collector, CollectedOutput& output)
      : collector(collector), output(output) {}

  void report(std::string_view message) override {
    output.flush();
    collector.addMessage(message);
  }

 private:
  Collector& collector;
  CollectedOutput& output;
};

/// Shows the progress until it is destroyed, if a thread can be started for that.
class ProgressThread {
 public:
  ProgressThread(progress::RunProgress& shown, const progress::InputProgress& progress,
                 const std::atomic<std::size_t>& current) {
    if (!shown.isActive()) return;
    try {
      thread =
          std::jthread([&](const std::stop_token& stop) { show(shown, progress, current, stop); });
    } catch (const std::system_error&) {
      // The work goes on without it.
    }
  }

 private:
  static void show(progress::RunProgress& shown, const progress::InputProgress& progress,
                   const std::atomic<std::size_t>& current, const std::stop_token& stop) {
    std::mutex mutex;
    std::unique_lock lock(mutex);
    std::condition_variable_any ended;
    while (!stop.stop_requested()) {
      const progress::RunProgress::Current input{current, progress.share};
      shown.show({&input, 1});
      ended.wait_for(lock, stop, progress::RunProgress::kInterval, [] { return false; });
    }
  }

  std::jthread thread;
};

}  // namespace

void runHere(const MakeJob& makeJob, Collector& collector, std::size_t count,
             progress::RunProgress& shown) {
  CollectedOutput output(collector);
  CollectedMessages messages(collector, output);
  progress::InputProgress progress;
  std::atomic<std::size_t> current = 0;
  const std::unique_ptr<Job> job =
      makeJob({.output = output, .messages = messages, .progress = progress});
  const ProgressThread thread(shown, progress, current);
  for (std::size_t i = 0; i < count; ++i) {
    progress.begin();
    current = i;
    const Outcome outcome = job->run(i);
    output.flush();
    collector.endInput(i, outcome);
    shown.setDone(i + 1);
  }
}

}  // namespace tessera::workers

#include "tessera/workers/runHere.hpp"

#include <atomic>
#include <cstdint>
#include <string_view>

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

}  // namespace

void runHere(const MakeJob& makeJob, Collector& collector, std::size_t count) {
  CollectedOutput output(collector);
  CollectedMessages messages(collector, output);
  std::atomic<std::uint64_t> line = 0;
  const std::unique_ptr<Job> job =
      makeJob({.output = output, .messages = messages, .line = line, .isRepeated = false});
  for (std::size_t i = 0; i < count; ++i) {
    const Outcome outcome = job->run(i);
    output.flush();
    collector.endInput(i, outcome);
  }
}

}  // namespace tessera::workers

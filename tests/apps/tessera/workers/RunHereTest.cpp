#include "tessera/workers/runHere.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstddef>
#include <memory>
#include <string_view>
#include <thread>
#include <vector>

#include "tessera/files/Interruption.hpp"
#include "tessera/inputs/Input.hpp"
#include "tessera/progress/RunProgress.hpp"
#include "tessera/workers/Collector.hpp"

namespace {

using tessera::files::HeldInterruptions;
using tessera::progress::Mode;
using tessera::progress::RunProgress;
using tessera::workers::Job;
using tessera::workers::JobContext;
using tessera::workers::Loss;
using tessera::workers::Outcome;

extern "C" void survive(int /*signal*/) {}

/// Is interrupted while it holds interruptions back, and notes whether no thread has taken it.
class InterruptedJob final : public Job {
 public:
  explicit InterruptedJob(bool& isHeld) : isHeld(isHeld) {}

  Outcome run(std::size_t /*index*/) override {
    const HeldInterruptions held;
    ::kill(::getpid(), SIGINT);
    // Long enough for another thread to take it.
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    sigset_t pending;
    isHeld = ::sigpending(&pending) == 0 && ::sigismember(&pending, SIGINT) == 1;
    return Outcome::kDone;
  }

 private:
  bool& isHeld;
};

class NoCollector final : public tessera::workers::Collector {
 public:
  void addText(std::string_view /*piece*/) override {}
  void addMessage(std::string_view /*message*/) override {}
  void endInput(std::size_t /*index*/, Outcome /*outcome*/) override {}
  void rest() override {}
  void loseInput(std::size_t /*index*/, const Loss& /*loss*/) override {}
};

TEST(RunHere, TheThreadThatShowsTheProgressTakesNoInterruption) {
  const auto previous = ::signal(SIGINT, survive);
  const std::vector<tessera::inputs::Input> inputs(1);
  RunProgress progress(Mode::kAlways, inputs);
  ASSERT_TRUE(progress.isActive());
  NoCollector collector;
  bool isHeld = false;
  tessera::workers::runHere(
      [&](const JobContext& /*context*/) { return std::make_unique<InterruptedJob>(isHeld); },
      collector, inputs.size(), progress);
  ::signal(SIGINT, previous);
  EXPECT_TRUE(isHeld);
}

}  // namespace

#include "tessera/workers/WorkerPool.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>

#include "apps/tessera/workers/SharedNumber.hpp"
#include "tessera/workers/Collector.hpp"
#include "tessera/workers/SharedSlots.hpp"

namespace {

using tessera::tests::SharedNumber;
using tessera::workers::Collector;
using tessera::workers::Job;
using tessera::workers::JobContext;
using tessera::workers::Loss;
using tessera::workers::Outcome;
using tessera::workers::SharedSlots;
using tessera::workers::WorkerPool;
using tessera::workers::WorkerUnusable;

using Work = std::function<void(const JobContext& context, std::size_t index)>;

/// Writes the letter of each input after `work` was done on it.
class LetterJob final : public Job {
 public:
  LetterJob(const JobContext& context, const Work& work) : context(context), work(work) {}

  Outcome run(std::size_t index) override {
    work(context, index);
    context.output.text() += static_cast<char>('a' + index);
    return Outcome::kDone;
  }

 private:
  JobContext context;
  const Work& work;
};

/// Notes what happens to the inputs: the text of each and its end, or that it was lost.
class Notes final : public Collector {
 public:
  const std::string& text() const noexcept { return notes; }

  void addText(std::string_view piece) override { notes += piece; }
  void addMessage(std::string_view message) override { notes += message; }
  void endInput(std::size_t /*index*/, Outcome /*outcome*/) override { notes += '.'; }
  void rest() override {}
  void loseInput(std::size_t /*index*/, const Loss& /*loss*/) override { notes += '!'; }

 private:
  std::string notes;
};

void writeInManyPieces(const JobContext& context) {
  for (std::size_t i = 0; i < SharedSlots::kFewestSlots; ++i) {
    context.output.text() += 'x';
    context.output.flush();
  }
}

// What was passed on to a pipe cannot be taken back.
TEST(WorkerPool, NothingIsPassedOnOfAnInputThatIsLostBeforeItsTurn) {
  const SharedNumber isLost;
  // The first worker is at 0 and is to do 2 then; the other one does the rest.
  const Work work = [&](const JobContext& context, std::size_t index) {
    if (index == 0) isLost.await();
    if (index == 3) {
      writeInManyPieces(context);
      ::raise(SIGKILL);
    }
    if (index == 4) *isLost = 1;
  };
  Notes notes;
  WorkerPool pool(
      {.workers = 2},
      [&](const JobContext& context) { return std::make_unique<LetterJob>(context, work); }, notes);
  pool.run(5);
  EXPECT_EQ(notes.text(), "a.b.c.!e.");
}

/// Runs two inputs in one worker, which is lost with the first one. So are `lostStarts` of the
/// processes that are to take its place, before they are ready.
std::string runWithLostStarts(int lostStarts) {
  const SharedNumber started;
  const Work work = [&](const JobContext& /*context*/, std::size_t index) {
    if (index == 0) ::raise(SIGKILL);
  };
  Notes notes;
  WorkerPool pool(
      {.workers = 1},
      [&](const JobContext& context) {
        const std::int64_t number = (*started)++;
        if (number > 0 && number <= lostStarts) ::raise(SIGKILL);
        return std::make_unique<LetterJob>(context, work);
      },
      notes);
  pool.run(2);
  return notes.text();
}

// Somebody else may have killed it.
TEST(WorkerPool, AProcessThatEndsAtItsStartIsReplacedIfOneCouldBeStartedBefore) {
  EXPECT_EQ(runWithLostStarts(1), "!b.");
  EXPECT_EQ(runWithLostStarts(2), "!b.");
  EXPECT_THROW(runWithLostStarts(1000), WorkerUnusable);
}

TEST(WorkerPool, AProcessThatEndsAtItsStartEndsTheRunIfNoneCouldBeStarted) {
  Notes notes;
  const SharedNumber started;
  WorkerPool pool(
      {.workers = 1},
      [&](const JobContext& /*context*/) {
        ++*started;
        ::raise(SIGKILL);
        return std::unique_ptr<Job>();
      },
      notes);
  EXPECT_THROW(pool.run(2), WorkerUnusable);
  EXPECT_EQ(*started, 1);
}

std::atomic<std::int64_t>* exits = nullptr;

/// Called at the exit of a process: counts it after some time.
void countExitLate() {
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  ++*exits;
}

TEST(WorkerPool, AProcessThatCannotMakeItsJobIsNotKilledWhileItEnds) {
  Notes notes;
  const SharedNumber exited;
  exits = &*exited;
  {
    WorkerPool pool(
        {.workers = 1},
        [](const JobContext& /*context*/) -> std::unique_ptr<Job> {
          std::atexit(countExitLate);
          throw std::runtime_error("a wrong bundle");
        },
        notes);
    EXPECT_THROW(pool.run(2), WorkerUnusable);
  }
  EXPECT_EQ(*exited, 1);
}

}  // namespace

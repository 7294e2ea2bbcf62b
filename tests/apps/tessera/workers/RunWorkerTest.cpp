#include "tessera/workers/runWorker.hpp"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tessera/workers/Frame.hpp"

namespace {

using tessera::workers::Frame;
using tessera::workers::Job;
using tessera::workers::JobContext;
using tessera::workers::Outcome;
using tessera::workers::SharedSlots;

/// Its input 0 has no output; that of input 1 needs more than all slots.
class LongOutput final : public Job {
 public:
  LongOutput(const JobContext& context, std::size_t slots) : context(context), slots(slots) {}

  Outcome run(std::size_t index) override {
    if (index == 0) return Outcome::kSkipped;
    const std::string piece(SharedSlots::kSlotBytes, 'x');
    for (std::size_t i = 0; i < slots + 5; ++i) {
      context.output.text() = piece;
      context.output.flush();
    }
    return Outcome::kDone;
  }

 private:
  JobContext context;
  std::size_t slots;
};

/// The parent's end of the channel to a worker that is a thread.
class WorkerThread {
 public:
  explicit WorkerThread(SharedSlots& slots) {
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    worker = std::thread([this, &slots] {
      tessera::workers::runWorker(
          [&slots](const JobContext& context) {
            return std::make_unique<LongOutput>(context, slots.size());
          },
          slots, ends[1]);
      ::close(ends[1]);
    });
  }
  ~WorkerThread() {
    worker.join();
    ::close(ends[0]);
  }
  WorkerThread(const WorkerThread&) = delete;
  WorkerThread& operator=(const WorkerThread&) = delete;

  void give(const std::vector<std::uint64_t>& commands) const {
    const std::size_t bytes = commands.size() * sizeof commands[0];
    EXPECT_EQ(::send(ends[0], commands.data(), bytes, 0), static_cast<ssize_t>(bytes));
  }

  /// Returns the next frame; one of kind kLost if none comes.
  Frame receive() const {
    constexpr int kPatienceMilliseconds = 10000;
    pollfd waiting{.fd = ends[0], .events = POLLIN, .revents = 0};
    Frame frame{.kind = Frame::Kind::kLost};
    if (::poll(&waiting, 1, kPatienceMilliseconds) == 1) ::recv(ends[0], &frame, sizeof frame, 0);
    return frame;
  }

 private:
  int ends[2] = {-1, -1};
  std::thread worker;
};

// Else the parent cannot tell it from one that takes too long.
TEST(RunWorker, AWorkerThatWaitsForASlotHasToldOfAllOthers) {
  SharedSlots slots(1);
  const WorkerThread worker(slots);
  EXPECT_EQ(worker.receive().kind, Frame::Kind::kReady);
  worker.give({0, 1});
  EXPECT_EQ(worker.receive().kind, Frame::Kind::kEnd);
  std::vector<std::uint16_t> filled;
  for (Frame frame{.kind = Frame::Kind::kText};
       filled.size() < slots.size() && frame.kind == Frame::Kind::kText;) {
    frame = worker.receive();
    if (frame.kind == Frame::Kind::kText) filled.push_back(frame.slot);
  }
  EXPECT_EQ(filled.size(), slots.size());
  for (const std::uint16_t slot : filled) slots.release(slot);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(worker.receive().kind, Frame::Kind::kText) << i;
  EXPECT_EQ(worker.receive().kind, Frame::Kind::kEnd);
  worker.give({tessera::workers::kNoMoreInputs});
}

}  // namespace

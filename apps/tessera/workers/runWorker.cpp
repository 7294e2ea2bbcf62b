#include "tessera/workers/runWorker.hpp"

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "tessera/diagnostics/describeException.hpp"
#include "tessera/workers/Frame.hpp"

namespace tessera::workers {
namespace {

/// Sends frames to the parent, those of small documents together: each time costs as much as to
/// parse some hundred lines.
class FrameSender {
 public:
  FrameSender(int descriptor, SharedSlots& slots) : descriptor(descriptor), slots(slots) {}

  void sendInSlot(Frame::Kind kind, std::string_view text) {
    // The parent frees only slots that it knows of, and has to see that this process waits for it.
    if (!slots.haveFree()) {
      flush();
      isPartSent = true;
    }
    const std::uint16_t slot = slots.fill(text);
    add({.kind = kind, .slot = slot, .size = static_cast<std::uint32_t>(text.size())});
  }

  void sendEnd(Outcome outcome) {
    add({.kind = Frame::Kind::kEnd, .outcome = outcome});
    // The parent may assume that an input of which it has a part, but not the end, is not done.
    if (isPartSent || Clock::now() - lastTime > kLongestDelay) flush();
    isPartSent = false;
  }

  void send(const Frame& frame) {
    add(frame);
    flush();
  }

  void flush() {
    const std::size_t size = pendingCount * sizeof(Frame);
    // So few bytes are sent as a whole.
    while (size != 0 && ::send(descriptor, pending.data(), size, 0) < 0) {
      if (errno != EINTR) std::_Exit(EXIT_FAILURE);
    }
    pendingCount = 0;
    lastTime = Clock::now();
  }

 private:
  using Clock = std::chrono::steady_clock;

  static constexpr std::chrono::milliseconds kLongestDelay{5};
  static constexpr std::size_t kMostPending = SharedSlots::kFewestSlots / 2;

  void add(const Frame& frame) {
    pending[pendingCount++] = frame;
    if (pendingCount < kMostPending) return;
    flush();
    isPartSent = true;
  }

  int descriptor;
  SharedSlots& slots;
  // An array, so that a lack of memory can be reported.
  std::array<Frame, kMostPending> pending;
  std::size_t pendingCount = 0;
  // Whether frames of the current input were sent.
  bool isPartSent = false;
  Clock::time_point lastTime = Clock::now();
};

class SlotOutput final : public files::OutputText {
 public:
  explicit SlotOutput(FrameSender& frames) : frames(frames) {}

 private:
  void write(std::string_view piece) override {
    while (!piece.empty()) {
      const auto part = piece.substr(0, SharedSlots::kSlotBytes);
      frames.sendInSlot(Frame::Kind::kText, part);
      piece.remove_prefix(part.size());
    }
  }

  FrameSender& frames;
};

class SlotMessages final : public Messages {
 public:
  SlotMessages(FrameSender& frames, SlotOutput& output) : frames(frames), output(output) {}

  void report(std::string_view message) override {
    output.flush();
    frames.sendInSlot(Frame::Kind::kMessage, message.substr(0, SharedSlots::kSlotBytes));
  }

 private:
  FrameSender& frames;
  SlotOutput& output;
};

/// Receives the numbers of the inputs.
class CommandReader {
 public:
  CommandReader(int descriptor, FrameSender& frames) : descriptor(descriptor), frames(frames) {}

  /// Returns the next command; `kNoMoreInputs` at the end of the channel. Frames that are held back
  /// are sent before it waits.
  std::uint64_t next() {
    if (taken == received) receive();
    return taken == received ? kNoMoreInputs : commands[taken++];
  }

 private:
  void receive() {
    ssize_t count = ::recv(descriptor, commands.data(), sizeof commands, MSG_DONTWAIT);
    if (count < 0) {
      frames.flush();
      do {
        count = ::recv(descriptor, commands.data(), sizeof commands, 0);
      } while (count < 0 && errno == EINTR);
    }
    taken = 0;
    received = count < 0 ? 0 : static_cast<std::size_t>(count) / sizeof commands[0];
  }

  int descriptor;
  FrameSender& frames;
  std::array<std::uint64_t, 64> commands;
  std::size_t taken = 0;
  std::size_t received = 0;
};

}  // namespace

void runWorker(const MakeJob& makeJob, SharedSlots& slots, int socket) {
  FrameSender frames(socket, slots);
  SlotOutput output(frames);
  SlotMessages messages(frames, output);
  try {
    const std::unique_ptr<Job> job =
        makeJob({.output = output, .messages = messages, .progress = slots.progress()});
    frames.send({.kind = Frame::Kind::kReady});
    CommandReader commands(socket, frames);
    for (auto index = commands.next(); index != kNoMoreInputs; index = commands.next()) {
      slots.beginInput();
      const Outcome outcome = job->run(index);
      output.flush();
      frames.sendEnd(outcome);
      // If this process ended before its parent knows of the end, the input would be worked on
      // again.
      if (!job->isRepeatable(index)) frames.flush();
    }
    return;
  } catch (...) {
    diagnostics::reportException([&](std::string_view message) { messages.report(message); });
  }
  frames.send({.kind = Frame::Kind::kUnusable});
}

}  // namespace tessera::workers

#include "tessera/workers/runWorker.hpp"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <utility>

#include "tessera/diagnostics/describeException.hpp"
#include "tessera/workers/Frame.hpp"

namespace tessera::workers {
namespace {

/// Sends frames to the parent, those of small documents together: each time costs as much as to
/// parse some hundred lines.
class FrameSender {
 public:
  FrameSender(int descriptor, SharedSlots& slots) : descriptor(descriptor), slots(slots) {}

  /// Takes a slot of the shared memory, to be sent as soon as it is filled.
  std::uint16_t takeSlot() {
    // The parent frees only slots that it knows of, and has to see that this process waits for it.
    if (!slots.haveFree()) {
      flush();
      isPartSent = true;
    }
    return slots.take();
  }

  void sendSlot(Frame::Kind kind, std::uint16_t slot, std::size_t size) {
    add({.kind = kind, .slot = slot, .size = static_cast<std::uint32_t>(size)});
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
  static constexpr std::size_t kMostPending = 64;

  void add(const Frame& frame) {
    pending[pendingCount++] = frame;
    // The parent can free slots meanwhile.
    if (pendingCount < std::min(kMostPending, slots.size() / 2)) return;
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

/// Collects the text of an input in slots. It is copied in pieces that are still in the nearest
/// cache.
class SlotOutput final : public files::OutputText {
 public:
  SlotOutput(FrameSender& frames, SharedSlots& slots)
      : OutputText(kPieceBytes), frames(frames), slots(slots) {}

  /// Sends all text.
  void send() {
    flush();
    if (slot) frames.sendSlot(Frame::Kind::kText, *std::exchange(slot, std::nullopt), used);
  }

 private:
  static constexpr std::size_t kPieceBytes = 16 * 1024;

  void write(std::string_view piece) override {
    while (!piece.empty()) {
      if (!slot) {
        slot = frames.takeSlot();
        used = 0;
      }
      const auto part = piece.substr(0, SharedSlots::kSlotBytes - used);
      slots.copy(*slot, used, part);
      used += part.size();
      piece.remove_prefix(part.size());
      if (used == SharedSlots::kSlotBytes) {
        frames.sendSlot(Frame::Kind::kText, *std::exchange(slot, std::nullopt), used);
      }
    }
  }

  FrameSender& frames;
  SharedSlots& slots;
  // The slot that is being filled, and how much of it is.
  std::optional<std::uint16_t> slot;
  std::size_t used = 0;
};

class SlotMessages final : public Messages {
 public:
  SlotMessages(FrameSender& frames, SharedSlots& slots, SlotOutput& output)
      : frames(frames), slots(slots), output(output) {}

  void report(std::string_view message) override {
    output.send();
    const auto part = message.substr(0, SharedSlots::kSlotBytes);
    const std::uint16_t slot = frames.takeSlot();
    slots.copy(slot, 0, part);
    frames.sendSlot(Frame::Kind::kMessage, slot, part.size());
  }

 private:
  FrameSender& frames;
  SharedSlots& slots;
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
  SlotOutput output(frames, slots);
  SlotMessages messages(frames, slots, output);
  try {
    const std::unique_ptr<Job> job =
        makeJob({.output = output, .messages = messages, .progress = slots.progress()});
    frames.send({.kind = Frame::Kind::kReady});
    CommandReader commands(socket, frames);
    for (auto index = commands.next(); index != kNoMoreInputs; index = commands.next()) {
      slots.beginInput();
      const Outcome outcome = job->run(index);
      output.send();
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

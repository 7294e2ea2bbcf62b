#include "tessera/workers/runWorker.hpp"

#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/workers/Frame.hpp"

namespace tessera::workers {
namespace {

/// Sends frames to the parent, those of a small document together.
class FrameSender {
 public:
  FrameSender(int descriptor, SharedSlots& slots) : descriptor(descriptor), slots(slots) {}

  void send(const Frame& frame) {
    pending.push_back(frame);
    flush();
  }

  void sendInSlot(Frame::Kind kind, std::string_view text) {
    slots.fill(text);
    pending.push_back({.kind = kind, .size = static_cast<std::uint32_t>(text.size())});
    // The parent has to know of some slots to free them, or this process would wait forever.
    if (text.size() == SharedSlots::kSlotBytes || pending.size() == kMostPending) flush();
  }

 private:
  static constexpr std::size_t kMostPending = SharedSlots::kSlots / 4;

  void flush() {
    const std::size_t size = pending.size() * sizeof(Frame);
    // So few bytes are written as a whole.
    while (::write(descriptor, pending.data(), size) < 0) {
      if (errno != EINTR) std::_Exit(EXIT_FAILURE);
    }
    pending.clear();
  }

  int descriptor;
  SharedSlots& slots;
  std::vector<Frame> pending;
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

/// Reads the number of an input; `kNoMoreInputs` at the end of the channel.
std::uint64_t readCommand(int descriptor) {
  std::uint64_t command = 0;
  ssize_t count = 0;
  do {
    count = ::read(descriptor, &command, sizeof command);
  } while (count < 0 && errno == EINTR);
  return count == sizeof command ? command : kNoMoreInputs;
}

}  // namespace

void runWorker(const MakeJob& makeJob, bool isRepeated, SharedSlots& slots, int socket) {
  FrameSender frames(socket, slots);
  SlotOutput output(frames);
  SlotMessages messages(frames, output);
  std::string reason;
  try {
    const std::unique_ptr<Job> job = makeJob(
        {.output = output, .messages = messages, .line = slots.line(), .isRepeated = isRepeated});
    frames.send({.kind = Frame::Kind::kReady});
    for (auto index = readCommand(socket); index != kNoMoreInputs; index = readCommand(socket)) {
      slots.line() = 0;
      const Outcome outcome = job->run(index);
      output.flush();
      frames.send({.kind = Frame::Kind::kEnd, .outcome = outcome});
    }
    return;
  } catch (const diagnostics::ProblemError& error) {
    reason = error.what();
  } catch (const std::exception& error) {
    reason =
        diagnostics::describe({.file = "tessera",
                               .place = {},
                               .what = error.what(),
                               .remedy = "report it, or try again with fewer or smaller files"});
  }
  messages.report(reason);
  frames.send({.kind = Frame::Kind::kUnusable});
}

}  // namespace tessera::workers

#include "tessera/workers/Worker.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <thread>

#include "apps/tessera/workers/SharedNumber.hpp"
#include "tessera/workers/Job.hpp"

namespace {

using tessera::tests::SharedNumber;
using tessera::workers::Job;
using tessera::workers::JobContext;
using tessera::workers::Outcome;
using tessera::workers::Worker;

using Clock = Worker::Clock;

/// Does its first input when it may and needs long for the second one: then it tells when the first
/// one ended.
class TwoInputs final : public Job {
 public:
  TwoInputs(const SharedNumber& isListening, const SharedNumber& end)
      : isListening(isListening), end(end) {}

  Outcome run(std::size_t index) override {
    if (index == 0) {
      isListening.await();
      noted = Clock::now();
    } else {
      *end = noted.time_since_epoch().count();
      std::this_thread::sleep_for(std::chrono::seconds(60));
    }
    return Outcome::kDone;
  }

 private:
  const SharedNumber& isListening;
  const SharedNumber& end;
  Clock::time_point noted;
};

// The end of the first input may be told together with that of the second one.
TEST(Worker, TheTimeOfAnInputBeginsWithIt) {
  const SharedNumber isListening;
  const SharedNumber end;
  Worker worker(1);
  if (!worker.start()) {
    worker.work([&](const JobContext& /*context*/) {
      return std::make_unique<TwoInputs>(isListening, end);
    });
    std::_Exit(EXIT_SUCCESS);
  }
  worker.give(0);
  worker.give(1);
  worker.sendInputs();
  while (!worker.isReady()) worker.receive();
  *isListening = 1;
  end.await();
  const Clock::time_point begin{Clock::duration(*end)};
  EXPECT_GE(worker.deadline(std::chrono::seconds(1)), begin + std::chrono::seconds(1));
}

}  // namespace

#include "hostile/Meter.hpp"

#include <pthread.h>

#include <algorithm>
#include <array>
#include <exception>
#include <stdexcept>

#include "hostile/LibraryWork.hpp"
#include "support/CountedWork.hpp"

namespace hostile {
namespace {

constexpr std::size_t kStackBytes = std::size_t{192} << 10U;
constexpr unsigned char kUnused = 0xA5;

struct Job {
  const std::function<void()>* operation;
  std::uint64_t work = 0;
  std::size_t heapBytes = 0;
  std::exception_ptr thrown;
};

void* run(void* argument) {
  Job& job = *static_cast<Job*>(argument);
  const LibraryWork before = libraryWork();
  resetPeak();
  const std::uint64_t blocks = quenlith::test::countedWork();
  try {
    (*job.operation)();
  } catch (...) {
    job.thrown = std::current_exception();
  }
  job.work = quenlith::test::countedWork() - blocks;
  const LibraryWork after = libraryWork();
  job.work += (after.bytes - before.bytes) / 16;
  job.heapBytes = after.peakBytes - std::min(before.liveBytes, after.peakBytes);
  return nullptr;
}

}  // namespace

Cost measure(const std::function<void()>& operation) {
  // Aligned to a page, as stacks have to be.
  alignas(4096) static std::array<unsigned char, kStackBytes> stack;
  static std::size_t deepest = kStackBytes;
  std::fill(stack.end() - static_cast<std::ptrdiff_t>(deepest), stack.end(), kUnused);
  Job job{.operation = &operation, .work = 0, .heapBytes = 0, .thrown = nullptr};
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstack(&attributes, stack.data(), stack.size());
  pthread_t thread{};
  if (pthread_create(&thread, &attributes, run, &job) != 0) {
    throw std::runtime_error("a thread could not be started");
  }
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  const auto* const used =
      std::ranges::find_if(stack, [](unsigned char byte) { return byte != kUnused; });
  deepest = static_cast<std::size_t>(stack.end() - used);
  if (job.thrown) std::rethrow_exception(job.thrown);
  return {.work = job.work, .stackBytes = deepest, .heapBytes = job.heapBytes};
}

}  // namespace hostile

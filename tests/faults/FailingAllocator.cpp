// A library to be preloaded (LD_PRELOAD): lets allocations of a program fail.
//
// FAIL_ALLOCATION is "KIND:N:MODE". KIND "new": calls of operator new; "malloc": calls of malloc,
// calloc, realloc and aligned_alloc, which includes those that operator new and the C library make.
// N is the number of the first call that fails, counted from 1 at the beginning of main(). MODE
// "once": only that one; "on": every one from there on. A process that is forked inherits the
// count.
//
// At its end, each process appends a line with two numbers to the file ALLOCATION_COUNTS: the calls
// of each kind.
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

// The C library's own functions, which it exports for programs that replace these.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t unit, std::size_t size);
}

namespace {

/// The calls of one kind, and which of them fail.
struct Calls {
  std::atomic<std::size_t> count = 0;
  std::size_t first = 0;
  bool isRepeated = false;

  bool failsNext() noexcept {
    const std::size_t number = ++count;
    return first != 0 && (isRepeated ? number >= first : number == first);
  }
};

constinit Calls newCalls;
constinit Calls mallocCalls;
constinit std::atomic<bool> isMainRunning = false;
int (*programMain)(int, char**, char**) = nullptr;

bool fails(Calls& calls) noexcept {
  return isMainRunning && calls.failsNext();
}

bool failsWithError() noexcept {
  if (!fails(mallocCalls)) return false;
  errno = ENOMEM;
  return true;
}

void* allocate(std::size_t size) noexcept {
  return fails(newCalls) ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void* allocate(std::size_t size, std::align_val_t unit) noexcept {
  return fails(newCalls) ? nullptr : std::aligned_alloc(static_cast<std::size_t>(unit), size);
}

void* orThrow(void* memory) {
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void readSettings() noexcept {
  const char* settings = std::getenv("FAIL_ALLOCATION");
  if (settings == nullptr) return;
  Calls& calls = std::strncmp(settings, "new:", 4) == 0 ? newCalls : mallocCalls;
  char* rest = nullptr;
  calls.first = std::strtoul(std::strchr(settings, ':') + 1, &rest, 10);
  calls.isRepeated = std::strcmp(rest, ":on") == 0;
}

void writeCounts() noexcept {
  isMainRunning = false;
  const char* file = std::getenv("ALLOCATION_COUNTS");
  if (file == nullptr) return;
  char text[64];
  const int size = std::snprintf(text, sizeof text, "%zu %zu\n", newCalls.count.load(),
                                 mallocCalls.count.load());
  const int descriptor = ::open(file, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
  if (descriptor < 0 || ::write(descriptor, text, static_cast<std::size_t>(size)) != size) {
    ::_exit(99);
  }
  ::close(descriptor);
}

int runMain(int argumentCount, char** arguments, char** environment) {
  readSettings();
  isMainRunning = true;
  return programMain(argumentCount, arguments, environment);
}

// Runs after the program's own functions that run at its end.
[[gnu::destructor]] void finish() {
  writeCounts();
}

}  // namespace

extern "C" {

// Ends a process without running its functions for the end.
[[gnu::visibility("default"), gnu::noreturn]] void _Exit(int status) {
  writeCounts();
  ::_exit(status);
}

[[gnu::visibility("default")]] int __libc_start_main(int (*function)(int, char**, char**),
                                                     int argumentCount, char** arguments,
                                                     void (*begin)(), void (*end)(),
                                                     void (*finishLoader)(), void* stackEnd) {
  programMain = function;
  const auto start =
      reinterpret_cast<decltype(&__libc_start_main)>(::dlsym(RTLD_NEXT, "__libc_start_main"));
  return start(&runMain, argumentCount, arguments, begin, end, finishLoader, stackEnd);
}

[[gnu::visibility("default")]] void* malloc(std::size_t size) {
  return failsWithError() ? nullptr : __libc_malloc(size);
}

[[gnu::visibility("default")]] void* calloc(std::size_t count, std::size_t size) {
  return failsWithError() ? nullptr : __libc_calloc(count, size);
}

[[gnu::visibility("default")]] void* realloc(void* memory, std::size_t size) {
  return failsWithError() ? nullptr : __libc_realloc(memory, size);
}

[[gnu::visibility("default")]] void* aligned_alloc(std::size_t unit, std::size_t size) {
  return failsWithError() ? nullptr : __libc_memalign(unit, size);
}

}  // extern "C"

#define EXPORTED [[gnu::visibility("default")]]

EXPORTED void* operator new(std::size_t size) {
  return orThrow(allocate(size));
}
EXPORTED void* operator new[](std::size_t size) {
  return orThrow(allocate(size));
}
EXPORTED void* operator new(std::size_t size, std::align_val_t unit) {
  return orThrow(allocate(size, unit));
}
EXPORTED void* operator new[](std::size_t size, std::align_val_t unit) {
  return orThrow(allocate(size, unit));
}
EXPORTED void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
EXPORTED void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
EXPORTED void* operator new(std::size_t size, std::align_val_t unit,
                            const std::nothrow_t&) noexcept {
  return allocate(size, unit);
}
EXPORTED void* operator new[](std::size_t size, std::align_val_t unit,
                              const std::nothrow_t&) noexcept {
  return allocate(size, unit);
}

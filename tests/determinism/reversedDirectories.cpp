// A library to be preloaded (LD_PRELOAD): the entries of each directory come in reverse order, and
// without their types, as on some file systems.
#include <dirent.h>
#include <dlfcn.h>

#include <cstddef>
#include <cstring>
#include <map>
#include <mutex>
#include <vector>

namespace {

using ReadDirectory = dirent* (*)(DIR*);
using CloseDirectory = int (*)(DIR*);

template <class Function>
Function next(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

std::mutex mutex;
std::map<DIR*, std::vector<dirent>> remaining;

std::vector<dirent> readAll(DIR* directory) {
  static const auto kReadNext = next<ReadDirectory>("readdir");
  std::vector<dirent> entries;
  while (const dirent* entry = kReadNext(directory)) {
    // An entry is as long as its name, so that copying the whole type would read past it.
    std::memcpy(&entries.emplace_back(), entry, entry->d_reclen);
    entries.back().d_type = DT_UNKNOWN;
  }
  return entries;
}

}  // namespace

#pragma GCC visibility push(default)
// NOLINTBEGIN(readability-identifier-naming): the names of the C library
extern "C" {

dirent* readdir(DIR* directory) {
  static thread_local dirent last;
  const std::lock_guard lock(mutex);
  auto found = remaining.find(directory);
  if (found == remaining.end()) found = remaining.emplace(directory, readAll(directory)).first;
  if (found->second.empty()) return nullptr;
  last = found->second.back();
  found->second.pop_back();
  return &last;
}

dirent64* readdir64(DIR* directory) {
  static_assert(sizeof(dirent) == sizeof(dirent64));
  return reinterpret_cast<dirent64*>(readdir(directory));
}

int closedir(DIR* directory) {
  static const auto kClose = next<CloseDirectory>("closedir");
  {
    const std::lock_guard lock(mutex);
    remaining.erase(directory);
  }
  return kClose(directory);
}
}
// NOLINTEND(readability-identifier-naming)
#pragma GCC visibility pop

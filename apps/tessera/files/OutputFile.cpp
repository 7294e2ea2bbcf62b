#include "tessera/files/OutputFile.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <system_error>
#include <utility>

#include "tessera/diagnostics/Problem.hpp"

namespace tessera::files {
namespace {

const char* remedyFor(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return "make its folder, or name a file in another one";
    case EACCES:
    case EPERM:
      return "ask for the right to write it, or name another file";
    case ENOSPC:
      return "make room, or name a file that can be written";
    default:
      return "name a file that can be written";
  }
}

}  // namespace

OutputFile::OutputFile(int borrowed, std::string fileName)
    : name(std::move(fileName)), descriptor(borrowed) {}

OutputFile::OutputFile(const std::string& fileName)
    : name(fileName),
      descriptor(::open(fileName.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)),
      owned(true) {
  if (descriptor < 0) fail("cannot be created");
}

OutputFile::~OutputFile() {
  if (owned) ::close(descriptor);
}

void OutputFile::flush() {
  std::string_view rest = held;
  while (!rest.empty()) {
    const ssize_t count = ::write(descriptor, rest.data(), rest.size());
    if (count >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      const int error = errno;
      held.clear();
      errno = error;
      fail("cannot be written");
    }
  }
  held.clear();
}

void OutputFile::fail(const char* deed) const {
  const int error = errno;
  throw diagnostics::OutputError(
      {.file = name,
       .place = {},
       .what = std::string(deed) + ": " + std::generic_category().message(error),
       .remedy = remedyFor(error)});
}

}  // namespace tessera::files

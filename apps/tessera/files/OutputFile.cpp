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

const char* remedyForWriting(int error) {
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

OutputFile::OutputFile(int descriptor, std::string name)
    : name(std::move(name)), descriptor(descriptor) {}

OutputFile::OutputFile(const std::string& name)
    : name(name),
      descriptor(::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)),
      owned(true) {
  if (descriptor < 0) fail("cannot be created");
}

OutputFile::~OutputFile() {
  if (owned) ::close(descriptor);
}

void OutputFile::flush() {
  std::string_view rest = buffered;
  while (!rest.empty()) {
    const ssize_t count = ::write(descriptor, rest.data(), rest.size());
    if (count >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      const int error = errno;
      buffered.clear();
      errno = error;
      fail("cannot be written");
    }
  }
  buffered.clear();
}

void OutputFile::fail(const char* what) const {
  const int error = errno;
  throw diagnostics::OutputError(
      {.file = name,
       .place = {},
       .what = std::string(what) + ": " + std::generic_category().message(error),
       .remedy = remedyForWriting(error)});
}

}  // namespace tessera::files

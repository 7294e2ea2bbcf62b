#include "tessera/files/OutputFile.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/diagnostics/StatusLine.hpp"
#include "tessera/diagnostics/writeAll.hpp"

namespace tessera::files {
namespace {

const char* remedyForWriting(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return "create its folder, or name a file in another one";
    case EACCES:
    case EPERM:
      return "check its permissions, or name another file";
    case EFBIG:
      return "raise the limit of the size of files (ulimit -f), or write fewer files at a time";
    case ENOSPC:
      return "free some disk space, or name a file that can be written";
    default:
      return "name a file that can be written";
  }
}

bool isRegularFile(int descriptor) {
  struct stat status;
  return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

void failOutput(const std::string& name, const std::string& what, int error,
                const std::string& remedy) {
  // The limit of the size of files is that of the process: no other file helps.
  throw diagnostics::OutputError(
      {.file = name,
       .place = {},
       .what = what + ": " + std::generic_category().message(error),
       .remedy = remedy.empty() || error == EFBIG ? remedyForWriting(error) : remedy});
}

OutputFile::OutputFile(int descriptor, std::string name, std::string remedy)
    : name(std::move(name)),
      remedy(std::move(remedy)),
      descriptor(descriptor),
      isTerminal(::isatty(descriptor) != 0),
      isRegular(isRegularFile(descriptor)) {}

void OutputFile::writeThrough(std::string_view piece) {
  flush();
  write(piece);
}

bool OutputFile::takeBack(std::uint64_t size) noexcept {
  struct stat status;
  if (!isRegular || ::fstat(descriptor, &status) != 0) return false;
  const bool isLast = status.st_size == end && ::lseek(descriptor, 0, SEEK_CUR) == end;
  const off_t rest = end - static_cast<off_t>(size);
  if (!isLast || rest < begin || ::ftruncate(descriptor, rest) != 0) return false;
  end = rest;
  return ::lseek(descriptor, rest, SEEK_SET) == rest;
}

void OutputFile::write(std::string_view piece) {
  if (!isTerminal) return writeAll(piece);
  const std::string_view shown = filter.pass(piece);
  if (shown.empty()) return;
  diagnostics::StatusPause pause;
  writeAll(shown);
  pause.wrote(shown);
}

void OutputFile::writeAll(std::string_view piece) {
  const int error = diagnostics::writeAll(descriptor, piece);
  if (error != 0) failOutput(name, "cannot be written", error, remedy);
  noteWritten(piece.size());
}

/// In a file that is appended to, the position tells whether others have written in between.
void OutputFile::noteWritten(std::size_t size) noexcept {
  if (!isRegular) return;
  const off_t position = ::lseek(descriptor, 0, SEEK_CUR);
  const off_t first = position - static_cast<off_t>(size);
  if (first != end) begin = first;
  end = position;
}

}  // namespace tessera::files

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tessera/files/Interruption.hpp"
#include "tessera/files/OpenFolder.hpp"
#include "tessera/files/OutputFile.hpp"

namespace tessera::files {

/// What to do with the `.partial` file that an earlier run left.
enum class Leftover { kReplaced, kContinued };

/// What happens to the `.partial` file of a run that ends early. One that is kept, for a later run
/// to continue, is removed only if it is empty.
enum class Incomplete { kRemoved, kKept };

/// The names that an output has, with symbolic links followed.
struct OutputNames {
  std::string complete;
  std::string partial;
};

OutputNames outputNames(const std::string& name);

/// Returns whether two outputs have a name in common, so that one would replace the other.
bool haveCommonName(const std::string& name, const std::string& other);

/// A file that appears under its name only when it is complete: until then it is NAME.partial,
/// which is locked, so that two runs cannot write it at the same time.
///
/// A device or a pipe is written directly. A symbolic link NAME is followed when the file is
/// opened, and what it leads to is the file from then on; both files stay in the folder that was
/// opened. NAME.partial is not followed, and neither used if it is a pipe or has a second name.
///
/// A file that replaces another one has its permissions (`copyPermissions`) or, if they cannot be
/// kept, fewer (`restrictPermissions`); until then only its owner may use it. NAME.partial is not
/// continued if it belongs to another user.
class PartialFile {
 public:
  /// Creates or opens NAME.partial. Throws OutputError, and leaves `name` untouched, when that
  /// cannot be written or another run holds its lock.
  PartialFile(const std::string& name, Leftover leftover,
              Incomplete incomplete = Incomplete::kRemoved);

  /// Removes NAME.partial unless it was renamed or is to be kept. An interruption does the same,
  /// but also keeps an empty one.
  ~PartialFile();
  PartialFile(const PartialFile&) = delete;
  PartialFile& operator=(const PartialFile&) = delete;

  /// For text at the end of the file.
  OutputFile& output() noexcept { return *file; }
  int descriptor() const noexcept { return number; }

  /// The name of the file while it is incomplete; empty when it is written directly.
  const std::string& partialName() const noexcept { return partial; }

  /// Cuts the file off after `size` bytes and continues there. Returns false when it is written
  /// directly and cannot be cut. Throws OutputError.
  bool cutAfter(std::uint64_t size);

  /// Writes what is buffered to the disk and renames the file. Throws OutputError. If what
  /// was written may not be on the disk, a file that is to be kept is empty afterwards.
  void complete();

 private:
  explicit PartialFile(std::string resolvedName);

  void open(Leftover leftover, Incomplete incomplete);
  void takePermissions(const Descriptor& old);
  [[noreturn]] void failReplacing(int error);
  [[noreturn]] void failWriting(int error);

  std::string name;
  OpenFolder folder;
  std::string partial;
  // The name of it in the folder: the destructor may have no memory to make it.
  std::string partialEntry;
  int number = -1;
  bool isIncomplete = true;
  std::optional<RemovedOnInterruption> removal;
  std::optional<OutputFile> file;
};

}  // namespace tessera::files

#include "tessera/commands/resumeRecords.hpp"

#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>
#include <string_view>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/formats/DocumentRecord.hpp"

namespace tessera::commands {
namespace {

/// The bytes of a file, mapped into memory.
class MappedFile {
 public:
  MappedFile(int descriptor, const std::string& name) {
    struct stat status;
    if (::fstat(descriptor, &status) != 0) files::failOutput(name, "cannot be read", errno);
    size = static_cast<std::size_t>(status.st_size);
    if (size == 0) return;
    bytes = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (bytes == MAP_FAILED) files::failOutput(name, "cannot be read", errno);
  }
  ~MappedFile() {
    if (size != 0) ::munmap(bytes, size);
  }
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  std::string_view text() const noexcept { return {static_cast<const char*>(bytes), size}; }

 private:
  void* bytes = nullptr;
  std::size_t size = 0;
};

[[noreturn]] void refuse(const files::PartialFile& file, std::size_t record,
                         const std::string& what) {
  throw diagnostics::ProblemError(
      {.file = file.partialName(),
       .place = {},
       .what = "record " + std::to_string(record) + " is not of " + what,
       .remedy = "resume with the inputs and options of the interrupted run, or run without "
                 "--resume"});
}

}  // namespace

ResumedRecords resumeRecords(files::PartialFile& file, const std::vector<inputs::Input>& inputs) {
  ResumedRecords resumed;
  std::size_t end = 0;
  {
    const MappedFile mapped(file.descriptor(), file.partialName());
    const std::string_view text = mapped.text();
    for (auto lineEnd = text.find('\n'); lineEnd != std::string_view::npos;
         lineEnd = text.find('\n', end)) {
      const std::string_view record = text.substr(end, lineEnd - end);
      if (resumed.count == inputs.size()) refuse(file, resumed.count + 1, "an input of this run");
      const std::string& path = inputs[resumed.count].path;
      const std::string head = formats::recordHead(path);
      if (!record.starts_with(head + ',') && record != head + '}') {
        refuse(file, resumed.count + 1, "input \"" + path + "\"");
      }
      resumed.hasErrors |= record.substr(head.size()).starts_with(formats::kErrorRecordMark);
      ++resumed.count;
      end = lineEnd + 1;
    }
  }
  file.cutAfter(end);
  return resumed;
}

}  // namespace tessera::commands

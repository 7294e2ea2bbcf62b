#include "tessera/run/resumeRecords.hpp"

#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>
#include <iterator>
#include <utility>

#include "tessera/diagnostics/Problem.hpp"

namespace tessera::run {

using inputs::Input;

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

/// Assigns records to inputs, both in order.
class RecordMatcher {
 public:
  RecordMatcher(const files::PartialFile& file, const std::vector<Input>& inputs,
                const RecordRules& rules)
      : file(file), inputs(inputs), rules(rules) {}

  /// Returns what follows the head of `record`. Throws ProblemError when it is not the record of
  /// one of the next inputs.
  std::string_view match(std::string_view record) {
    if (next == inputs.size()) refuse("an input of this run");
    for (found = next; found < inputs.size(); ++found) {
      const std::string head = rules.head(inputs[found].path);
      if (record.starts_with(head + ',') || record == head + '}') return record.substr(head.size());
      if (rules.hasErrorRecords) break;
    }
    refuse("input \"" + inputs[next].path + "\"");
  }

  /// Keeps the record that was matched.
  void keep() {
    ++count;
    for (; next < found; ++next) withoutRecord.push_back(next);
    ++next;
  }

  std::size_t firstUndone() const noexcept { return next; }
  const std::vector<std::size_t>& missing() const noexcept { return withoutRecord; }

 private:
  [[noreturn]] void refuse(const std::string& expected) const {
    throw diagnostics::ProblemError(
        {.file = file.partialName(),
         .place = {},
         .what = "record " + std::to_string(count + 1) + " does not belong to " + expected,
         .remedy = "resume with the inputs and options of the interrupted run, or run without "
                   "--resume"});
  }

  const files::PartialFile& file;
  const std::vector<Input>& inputs;
  const RecordRules& rules;
  // How many records are kept, the first input after theirs, and the one of the matched record.
  std::size_t count = 0;
  std::size_t next = 0;
  std::size_t found = 0;
  std::vector<std::size_t> withoutRecord;
};

}  // namespace

ResumedInputs resumeRecords(files::PartialFile& file, std::vector<Input> inputs,
                            const RecordRules& rules) {
  RecordMatcher matcher(file, inputs, rules);
  std::size_t end = 0;
  {
    const MappedFile mapped(file.descriptor(), file.partialName());
    const std::string_view text = mapped.text();
    for (auto lineEnd = text.find('\n'); lineEnd != std::string_view::npos;
         lineEnd = text.find('\n', end)) {
      const std::string_view record = text.substr(end, lineEnd - end);
      if (rules.examine(matcher.match(record)) == Keep::kNothingFromHere) break;
      matcher.keep();
      end = lineEnd + 1;
    }
  }
  file.cutAfter(end);
  ResumedInputs resumed;
  for (const std::size_t index : matcher.missing()) {
    resumed.failed.push_back(std::move(inputs[index]));
  }
  const auto firstUndone = inputs.begin() + static_cast<std::ptrdiff_t>(matcher.firstUndone());
  resumed.rest.assign(std::move_iterator(firstUndone), std::move_iterator(inputs.end()));
  return resumed;
}

}  // namespace tessera::run

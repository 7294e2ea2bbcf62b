#include "tessera/run/resumeRecords.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <utility>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/Descriptor.hpp"

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
  /// `name` is the file with the records.
  RecordMatcher(const std::string& name, const std::vector<Input>& inputs, const RecordRules& rules)
      : name(name), inputs(inputs), rules(rules) {}

  /// Returns what follows the head of `record`; nothing when it is not the record of one of the
  /// next inputs.
  std::optional<std::string_view> match(std::string_view record) {
    for (found = next; found < inputs.size(); ++found) {
      const std::string head = rules.head(inputs[found].path);
      if (record.starts_with(head) && hasContent(record.substr(head.size()))) {
        return record.substr(head.size());
      }
      if (rules.hasErrorRecords) break;
    }
    return std::nullopt;
  }

  /// Keeps the record that was matched, with that content.
  void keep(std::string_view content) {
    if (rules.note) rules.note(content);
    ++count;
    for (; next < found; ++next) withoutRecord.push_back(next);
    ++next;
  }

  /// Throws ProblemError: the next record does not match.
  [[noreturn]] void refuseNext() const {
    const std::string expected =
        next == inputs.size() ? "an input of this run" : "input \"" + inputs[next].path + "\"";
    throw diagnostics::ProblemError(
        {.file = name,
         .place = {},
         .what = "record " + std::to_string(count + 1) + " does not belong to " + expected,
         .remedy = "resume with the inputs and options of the run that wrote the file, or run "
                   "without --resume"});
  }

  std::size_t firstUndone() const noexcept { return next; }
  const std::vector<std::size_t>& missing() const noexcept { return withoutRecord; }

 private:
  bool hasContent(std::string_view afterHead) const {
    return std::ranges::any_of(rules.contents, [afterHead](std::string_view begin) {
      return afterHead.starts_with(begin);
    });
  }

  const std::string& name;
  const std::vector<Input>& inputs;
  const RecordRules& rules;
  // How many records are kept, the first input after theirs, and the one of the matched record.
  std::size_t count = 0;
  std::size_t next = 0;
  std::size_t found = 0;
  std::vector<std::size_t> withoutRecord;
};

/// Calls `take` for the complete records of `text`, in order, until it returns false. Returns the
/// end of those for which it returned true.
template <class Take>
std::size_t takeRecords(std::string_view text, Take take) {
  std::size_t end = 0;
  for (auto lineEnd = text.find('\n'); lineEnd != std::string_view::npos;
       lineEnd = text.find('\n', end)) {
    if (!take(text.substr(end, lineEnd - end))) break;
    end = lineEnd + 1;
  }
  return end;
}

ResumedInputs takeUndone(const RecordMatcher& matcher, std::vector<Input> inputs) {
  ResumedInputs resumed;
  for (const std::size_t index : matcher.missing()) {
    resumed.failed.push_back(std::move(inputs[index]));
  }
  const auto firstUndone = inputs.begin() + static_cast<std::ptrdiff_t>(matcher.firstUndone());
  resumed.rest.assign(std::move_iterator(firstUndone), std::move_iterator(inputs.end()));
  return resumed;
}

}  // namespace

ResumedInputs resumeRecords(files::PartialFile& file, std::vector<Input> inputs,
                            const RecordRules& rules) {
  RecordMatcher matcher(file.partialName(), inputs, rules);
  const auto keep = [&](std::string_view record) {
    const auto content = matcher.match(record);
    if (!content) matcher.refuseNext();
    if (rules.dependsOnOthers && rules.dependsOnOthers(*content)) return false;
    matcher.keep(*content);
    return true;
  };
  const std::size_t end =
      takeRecords(MappedFile(file.descriptor(), file.partialName()).text(), keep);
  file.cutAfter(end);
  return takeUndone(matcher, std::move(inputs));
}

void noteRecords(const std::string& name, const std::vector<Input>& inputs,
                 const RecordRules& rules) {
  const files::Descriptor file(::open(name.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.get() < 0) files::failOutput(name, "cannot be read", errno);
  RecordMatcher matcher(name, inputs, rules);
  takeRecords(MappedFile(file.get(), name).text(), [&](std::string_view record) {
    const auto content = matcher.match(record);
    if (content) matcher.keep(*content);
    return content.has_value();
  });
}

}  // namespace tessera::run

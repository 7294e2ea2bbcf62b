#include "tessera/check/transfer/CheckResult.hpp"

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

namespace tessera::check::transfer {

using catalogue::CheckedFile;
using catalogue::Diagnostic;
using catalogue::Edit;
using catalogue::Fix;
using catalogue::Note;
using catalogue::Span;
using diagnostics::Place;
using diagnostics::Problem;

namespace {

/// Appends values to bytes.
class Encoder {
 public:
  template <typename Value>
  void add(const Value& value) {
    if constexpr (std::is_trivially_copyable_v<Value>) {
      // Both ends are the same program: the layout is the same.
      bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    } else {
      addParts(value);
    }
  }

  std::string take() { return std::move(bytes); }

 private:
  template <typename Character>
  void addParts(const std::basic_string<Character>& text) {
    add(text.size());
    bytes.append(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(Character));
  }

  template <typename Value>
  void addParts(const std::vector<Value>& values) {
    add(values.size());
    for (const Value& value : values) add(value);
  }

  template <typename Value>
  void addParts(const std::optional<Value>& value) {
    add(value.has_value());
    if (value) add(*value);
  }

  void addParts(const Problem& problem) {
    add(problem.file);
    add(problem.place);
    add(problem.what);
    add(problem.remedy);
  }

  // Notes about other files are added later, when all files are known.
  void addParts(const Note& note) {
    assert(note.otherFile == nullptr);
    add(note.span);
    add(note.message);
  }

  void addParts(const Edit& edit) {
    add(edit.span);
    add(edit.text);
  }

  void addParts(const Fix& fix) {
    add(fix.description);
    add(fix.edits);
  }

  void addParts(const Diagnostic& diagnostic) {
    add(diagnostic.kind);
    add(diagnostic.message);
    add(diagnostic.span);
    add(diagnostic.notes);
    add(diagnostic.fix);
    add(diagnostic.unpairedTask);
  }

  std::string bytes;
};

/// Takes values from bytes, in the order in which they were added.
class Decoder {
 public:
  explicit Decoder(std::string_view bytes) : bytes(bytes) {}

  template <typename Value>
  Value take() {
    Value value{};
    read(value);
    return value;
  }

 private:
  template <typename Value>
  void read(Value& value) {
    if constexpr (std::is_trivially_copyable_v<Value>) {
      assert(sizeof value <= bytes.size());
      std::memcpy(&value, bytes.data(), sizeof value);
      bytes.remove_prefix(sizeof value);
    } else {
      readParts(value);
    }
  }

  template <typename Character>
  void readParts(std::basic_string<Character>& text) {
    text.resize(take<std::size_t>());
    const std::size_t size = text.size() * sizeof(Character);
    assert(size <= bytes.size());
    if (size != 0) std::memcpy(text.data(), bytes.data(), size);
    bytes.remove_prefix(size);
  }

  template <typename Value>
  void readParts(std::vector<Value>& values) {
    values.resize(take<std::size_t>());
    for (Value& value : values) read(value);
  }

  template <typename Value>
  void readParts(std::optional<Value>& value) {
    if (take<bool>()) read(value.emplace());
  }

  void readParts(Problem& problem) {
    read(problem.file);
    read(problem.place);
    read(problem.what);
    read(problem.remedy);
  }

  void readParts(Note& note) {
    read(note.span);
    read(note.message);
  }

  void readParts(Edit& edit) {
    read(edit.span);
    read(edit.text);
  }

  void readParts(Fix& fix) {
    read(fix.description);
    read(fix.edits);
  }

  void readParts(Diagnostic& diagnostic) {
    read(diagnostic.kind);
    read(diagnostic.message);
    read(diagnostic.span);
    read(diagnostic.notes);
    read(diagnostic.fix);
    read(diagnostic.unpairedTask);
  }

  std::string_view bytes;
};

/// Returns the numbers of the lines that reports look at, in ascending order.
std::vector<std::uint64_t> linesOf(const std::vector<Diagnostic>& diagnostics) {
  std::vector<bool> isShown;
  const auto mark = [&isShown](std::uint64_t number) {
    if (number >= isShown.size()) isShown.resize(number + 1);
    isShown[number] = true;
  };
  const auto markBoth = [&mark](const Span& span) {
    mark(span.begin.line);
    mark(span.end.line);
  };
  for (const Diagnostic& diagnostic : diagnostics) {
    markBoth(diagnostic.span);
    for (const Note& note : diagnostic.notes) markBoth(note.span);
    if (!diagnostic.fix) continue;
    for (const Edit& edit : diagnostic.fix->edits) markBoth(edit.span);
  }
  std::vector<std::uint64_t> numbers;
  for (std::uint64_t number = 0; number < isShown.size(); ++number) {
    if (isShown[number]) numbers.push_back(number);
  }
  return numbers;
}

void encodeFile(Encoder& encoder, const CheckedFile& file) {
  encoder.add(file.path);
  encoder.add(file.diagnostics);
  const std::vector<std::uint64_t> numbers = linesOf(file.diagnostics);
  encoder.add(numbers);
  for (const std::uint64_t number : numbers) {
    encoder.add(std::u16string(file.lines.line(number)));
  }
}

CheckedFile decodeFile(Decoder& decoder) {
  CheckedFile file;
  file.path = decoder.take<std::string>();
  file.diagnostics = decoder.take<std::vector<Diagnostic>>();
  auto numbers = decoder.take<std::vector<std::uint64_t>>();
  source::JoinedLines texts;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (i != 0) texts.text += u'\n';
    texts.text += decoder.take<std::u16string>();
    texts.any = true;
  }
  file.lines = source::SourceLines(std::move(numbers), std::move(texts));
  return file;
}

}  // namespace

std::string encode(const CheckResult& result) {
  Encoder encoder;
  encoder.add(result.problems);
  encoder.add(result.difference);
  encoder.add(result.file.has_value());
  if (result.file) encodeFile(encoder, *result.file);
  return encoder.take();
}

CheckResult decode(std::string_view bytes) {
  Decoder decoder(bytes);
  CheckResult result;
  result.problems = decoder.take<std::vector<Problem>>();
  result.difference = decoder.take<std::string>();
  if (decoder.take<bool>()) result.file = decodeFile(decoder);
  return result;
}

}  // namespace tessera::check::transfer

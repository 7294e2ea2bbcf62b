#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tessera/diagnostics/TerminalFilter.hpp"
#include "tessera/files/OutputText.hpp"

namespace tessera::files {

/// Writes text to an open file. A short write, an interrupted one and a pipe that does not block
/// are continued until all is written. A terminal gets escapes for what nobody could see there
/// (`diagnostics::TerminalFilter`).
class OutputFile final : public OutputText {
 public:
  /// Borrows the open file `descriptor`; `name` and `remedy` are for `failOutput`.
  OutputFile(int descriptor, std::string name, std::string remedy = {});

  /// Writes all of `piece` at once, after what is buffered. Throws OutputError.
  void writeThrough(std::string_view piece);

  /// Removes the last `size` bytes that were written, and returns whether that was possible: it is
  /// for a regular file in which nobody else has written among or after them.
  bool takeBack(std::uint64_t size) noexcept;

 private:
  void write(std::string_view piece) override;
  void writeAll(std::string_view piece);
  void noteWritten(std::size_t size) noexcept;

  std::string name;
  std::string remedy;
  int descriptor;
  bool isTerminal;
  bool isRegular;
  // In a regular file, where the bytes that were written last in a row begin and end.
  std::int64_t begin = 0;
  std::int64_t end = 0;
  diagnostics::TerminalFilter filter;
};

/// Throws OutputError for the file `name`: `what` happened, for the reason `error` (an errno). If
/// `remedy` is empty or does not help against it, one is chosen by the error.
[[noreturn]] void failOutput(const std::string& name, const std::string& what, int error,
                             const std::string& remedy = {});

}  // namespace tessera::files

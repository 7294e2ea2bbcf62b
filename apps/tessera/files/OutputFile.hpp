#pragma once

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
  /// Borrows the open file `descriptor`; `name` names it in errors.
  OutputFile(int descriptor, std::string name);

  /// Writes all of `piece` at once, after what is buffered. Throws OutputError.
  void writeThrough(std::string_view piece);

  /// Removes the last `size` bytes that were written, and returns whether that was possible: it is
  /// for a regular file.
  bool takeBack(std::uint64_t size) noexcept;

 private:
  void write(std::string_view piece) override;
  void writeAll(std::string_view piece);
  void awaitRoom() const;

  std::string name;
  int descriptor;
  bool isTerminal;
  diagnostics::TerminalFilter filter;
};

/// Throws OutputError for the file `name`: `what` happened, for the reason `error` (an errno).
[[noreturn]] void failOutput(const std::string& name, const std::string& what, int error);

}  // namespace tessera::files

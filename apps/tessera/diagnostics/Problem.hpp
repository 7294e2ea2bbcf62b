#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <string>

namespace tessera::diagnostics {

/// A place in a file. 1-based; `column` counts characters.
struct Place {
  std::uint64_t line = 1;
  std::uint64_t column = 1;
};

/// What is wrong with an input, where, and what the user can do about it. UTF-8.
struct Problem {
  /// The file as the user named it; "tessera" for the command line.
  std::string file;
  std::optional<Place> place;
  std::string what;
  /// May be empty.
  std::string remedy;
};

/// Returns `problem` as one line without an ending: "file:line:column: error: what; remedy",
/// control characters escaped.
std::string describe(const Problem& problem);

/// Thrown when a problem ends the work on a file or on a command.
class ProblemError : public std::exception {
 public:
  explicit ProblemError(Problem found);

  const Problem& problem() const noexcept { return found; }
  /// The text of `describe`.
  const char* what() const noexcept override { return text.c_str(); }

 private:
  Problem found;
  std::string text;
};

/// Thrown when output cannot be written, which ends the run.
class OutputError : public ProblemError {
 public:
  using ProblemError::ProblemError;
};

}  // namespace tessera::diagnostics

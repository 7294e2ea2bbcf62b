#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tessera/check/catalogue/Diagnostic.hpp"

namespace tessera::check::fixes {

/// The bytes of a file, to which fixes are applied. What no edit touches stays byte for byte: line
/// endings, a byte order mark, a missing line ending at the end.
class FixedText {
 public:
  /// `bytes` is UTF-8.
  explicit FixedText(std::string_view bytes);

  /// Applies `fixes`, those of diagnostics of the current text in ascending order, and returns how
  /// many. A fix that overlaps or touches an earlier one is left out. Borrows them for the call.
  std::size_t apply(std::span<const catalogue::Fix* const> fixes);

  std::string bytes() const;

  /// Returns the difference between the original and the current text in the unified format, with
  /// `name` as the name of both; empty if there is none.
  std::string diff(const std::string& name) const;

 private:
  struct Line {
    std::string bytes;
    /// The index of the line in the original.
    std::size_t origin = 0;
  };

  class Editor;

  void normalize();

  std::vector<std::string> original;
  std::vector<Line> lines;
};

}  // namespace tessera::check::fixes

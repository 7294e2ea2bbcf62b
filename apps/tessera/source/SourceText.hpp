#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tessera/files/FileReader.hpp"
#include "tessera/source/lines.hpp"

namespace tessera::source {

/// One source file: code, and after it perhaps an appendix.
struct SourceText {
  JoinedLines code;
  /// The lines after the one that starts the appendix.
  JoinedLines appendix;
  /// The 1-based number of the line that starts the appendix; 0 when none does.
  std::uint64_t appendixLine = 0;
  /// That line; empty when none does.
  std::u16string appendixLineText;
};

/// Reads a file and cuts it at its appendix. Throws ProblemError.
SourceText readSource(files::FileReader& reader);

/// Like `readSource`, but of the content `bytes` of the file `name`.
SourceText decodeSource(const std::string& name, std::string_view bytes);

/// Cuts `text`, whose lines end in LF, at the first line that starts an appendix. An LF at the
/// end begins no further line.
SourceText splitSource(std::u16string text);

}  // namespace tessera::source

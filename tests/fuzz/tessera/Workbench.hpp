#pragma once

#include <string>
#include <string_view>

#include "fuzz/Choices.hpp"
#include "hostile/Host.hpp"
#include "tessera/check/catalogue/CheckedFile.hpp"
#include "tessera/session/FileParser.hpp"

namespace quenlith::fuzz {

/// A source file: its name and its bytes.
struct SourceFile {
  std::string name;
  std::string bytes;
};

/// Reads a file from an input: one byte for the name, which tells the language, and the text. What
/// is not UTF-8 becomes U+FFFD.
SourceFile readFile(Choices& choices);

/// What `tessera` does with a file, in this process. One is used for all inputs.
class Workbench {
 public:
  static Workbench& get();

  hostile::Host& host() { return parserHost; }
  const std::vector<tessera::session::NamedParser>& parsers() const { return session.parsers(); }

  tessera::session::ParsedFile parse(const SourceFile& file);
  tessera::check::catalogue::CheckedFile check(const SourceFile& file);

  /// Returns whether a parser takes the text of the marker.
  static bool isAccepted(const syntax::Marker& marker);

 private:
  hostile::Host parserHost;
  tessera::session::SnippetSession session = parserHost.makeSession(nullptr);
  tessera::session::FileParser parser{session, parserHost.appendix(), nullptr};
};

}  // namespace quenlith::fuzz

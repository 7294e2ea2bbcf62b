#pragma once

#include <string_view>
#include <vector>

#include "foundation/json/Writer.hpp"
#include "quenlith/build/markup/Snippet.hpp"
#include "tessera/files/OutputText.hpp"

namespace tessera::session {

/// Writes the calls of a session as commands of `tessera replay`, each before the call: the record
/// is complete even if the call ends the process.
class Recording {
 public:
  /// Borrows `file`. All operations throw OutputError.
  explicit Recording(files::OutputText& file);

  /// Begins a file with a new document and the entries of its appendix; `code` is the
  /// auxiliary text of all its snippets.
  void begin(const std::vector<fl::i18n::ustring>& appendixEntries, std::u16string_view code);
  void reset(std::string_view parser);
  void canParse(std::string_view parser, const quenlith::build::markup::Snippet& snippet);
  void parse(std::string_view parser, const quenlith::build::markup::Snippet& snippet);
  /// Ends a file by asking for its document.
  void end();

 private:
  void beginCommand(std::string_view operation);
  void endCommand();
  void call(std::string_view operation, std::string_view parser,
            const quenlith::build::markup::Snippet& snippet);

  files::OutputText& file;
  foundation::json::Writer json;
  // The auxiliary text that a reader of the recording assumes for a snippet without one.
  fl::i18n::ustring auxiliaryText;
  bool auxiliaryTextIsNew = false;
};

}  // namespace tessera::session

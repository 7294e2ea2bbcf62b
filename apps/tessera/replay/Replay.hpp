#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "document/kdzero/TesseraDocument.hpp"
#include "foundation/json/Writer.hpp"
#include "quenlith/shared/appendix/MarkerAppendix.hpp"
#include "tessera/files/OutputText.hpp"
#include "tessera/formats/NodeJson.hpp"
#include "tessera/replay/Command.hpp"
#include "tessera/session/LogCollector.hpp"
#include "tessera/session/SnippetSession.hpp"

namespace tessera::replay {

/// Executes commands on one document and writes an answer to each.
class Replay {
 public:
  using Appendix = quenlith::shared::appendix::MarkerAppendix;

  /// Borrows `appendix` and `output`.
  Replay(std::vector<session::NamedParser> parsers, Appendix& appendix, files::OutputText& output);

  /// Executes `command` and writes the answer, one line. An exception of a parser is an answer
  /// too. Throws CommandError when the command names a parser or a node that does not exist,
  /// OutputError when the answer cannot be written.
  void run(const Command& command);

 private:
  void runOperation(const Command& command);
  void canParse(const Command& command);
  void parse(const Command& command);
  void reset(const Command& command);
  void writeNodes();
  void addLine(const Command& command);
  void setView(const Command& command);
  template <typename Call>
  void answerCall(const Call& call);
  quenlith::build::markup::SnippetParser& findParser(const Command& command) const;
  const quenlith::build::markup::Snippet& takeSnippet(const CommandSnippet& given);

  std::vector<session::NamedParser> parsers;
  Appendix& appendix;
  files::OutputText& output;
  foundation::json::Writer json;
  formats::NodeJson nodes;
  session::LogCollector log;
  std::shared_ptr<document::kdzero::TesseraDocument> document;
  // Keeps the auxiliary text for the next snippet.
  quenlith::build::markup::Snippet snippet;
};

}  // namespace tessera::replay

#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "document/kdzero/Node.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "foundation/json/Value.hpp"
#include "quenlith/build/markup/SnippetParser.hpp"
#include "quenlith/build/markup/code/task/TaskIdCounts.hpp"
#include "quenlith/build/markup/services/ParserServicesProvider.hpp"
#include "quenlith/shared/appendix/AppendixBuilder.hpp"
#include "quenlith/syntax/Marker.hpp"
#include "tessera/contentmodel/kdzero/LiveTaskData.hpp"

namespace quenlith::build::markup::code {

/// Takes the lines of embedded tasks: from the line with a task marker to the line with the
/// second marker of the same id.
///
/// The opening line adds a header node with the task's settings out of the appendix, every line
/// its line node; the closing line enters the number of lines into the header. Markers without a
/// partner, and markers inside another task, become failures on the node of their line.
///
/// Keeps an open task from call to call: one instance serves one snippet at a time, and the host
/// calls `reset` before the next one. When `parse` throws, the state is what the steps up to
/// there made of it: the host then calls `reset` and drops the document.
class TaskSnippetParserImpl : public SnippetParser {
 public:
  using AppendixData = std::map<std::string, foundation::json::Value>;

  /// Shares both services, which must not be null, for the life of the parser.
  TaskSnippetParserImpl(const std::shared_ptr<shared::appendix::AppendixBuilder>& appendix,
                        const std::shared_ptr<services::ParserServicesProvider>& provider);
  TaskSnippetParserImpl(const TaskSnippetParserImpl&) = delete;
  TaskSnippetParserImpl& operator=(const TaskSnippetParserImpl&) = delete;
  ~TaskSnippetParserImpl() override;

  /// Returns true for a line with a task marker and for one whose kind is 3.
  bool canParse(const Snippet& snippet) override;

  /// Adds the header, if the line opens a task, and the line node. The kind of the result is 3
  /// while a task is open, else 0.
  ///
  /// A line that opens and closes a task, and begins with a marker, adds the header alone. Costs
  /// the line, and on a line outside a task that has a task marker one comparison of
  /// `snippet.auxiliaryText` with a block seen before or, for a new block, a scan of it.
  ParseResult parse(std::shared_ptr<document::kdzero::TesseraDocument> document,
                    const Snippet& snippet) override;

  /// Forgets the open task, the overlapping ids and the blocks seen.
  void reset() override;

 private:
  struct Line;
  enum class Next { kParseLine, kReturn };

  void decide(Line& line, const Snippet& snippet);
  Next takeTaskLine(Line& line);
  Next beginTask(Line& line);
  void addHeader(Line& line);
  void anchorHeader(Line& line, document::kdzero::Node header);
  Next closeOnSameLine(Line& line);
  void parseLine(Line& line, const Snippet& snippet);

  bool hasMatchingTaskMarker(const fl::i18n::ustring& blockText, const syntax::Marker& taskMarker);
  void closeTask(const std::shared_ptr<document::kdzero::TesseraDocument>& document);
  AppendixData findAppendixEntry(const syntax::Marker& taskMarker);
  tessera::contentmodel::kdzero::LiveTaskData buildLiveTaskData(const syntax::Marker& taskMarker);
  void buildMissingTaskMarkerFailure(document::kdzero::Node lineNode,
                                     const syntax::Marker& taskMarker);
  void buildOverlappingTaskMarkerFailure(document::kdzero::Node lineNode,
                                         const syntax::Marker& taskMarker);
  void addTaskFailure(document::kdzero::Node lineNode, const syntax::Marker& taskMarker,
                      const char16_t* failureId);

  // The provider is released before the appendix builder.
  std::shared_ptr<shared::appendix::AppendixBuilder> appendixBuilder;
  std::shared_ptr<services::ParserServicesProvider> parserServicesProvider;
  /// Lines counted for the open task; 0 when none is open. Wraps.
  std::uint16_t taskLineCount = 0;
  /// Index of the open task's header among the top-level nodes.
  std::uint64_t taskNodeIndex = 0;
  fl::i18n::ustring currentTaskId;
  /// Ids of task markers met inside another task; they open no task until `reset`.
  std::unordered_set<fl::i18n::ustring> overlappingTaskIds;
  task::TaskIdCounts taskIdCounts;
};

}  // namespace quenlith::build::markup::code

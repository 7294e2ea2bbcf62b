#pragma once

#include <cstdint>
#include <memory>
#include <set>

#include "document/kdzero/Node.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "quenlith/build/markup/SnippetParser.hpp"
#include "quenlith/build/markup/code/task/TaskFailures.hpp"
#include "quenlith/build/markup/code/task/TaskIdCounts.hpp"
#include "quenlith/build/markup/services/ParserServicesProvider.hpp"
#include "quenlith/shared/appendix/AppendixBuilder.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace quenlith::build::markup::code {

/// Parses the lines of embedded tasks: from the line with a task marker to the line with the second
/// marker of the same id.
///
/// The opening line adds a header node with the task's settings from the appendix, and every line
/// adds its line node. The closing line stores the number of lines in the header. A marker without
/// a partner, or inside another task, becomes a failure on the node of its line.
///
/// Keeps an open task from call to call: one instance parses one snippet at a time, and the host
/// calls `reset` before the next one. When `parse` throws, the steps before the exception have
/// changed the state: the host must call `reset` and discard the document.
class TaskSnippetParserImpl : public SnippetParser {
 public:
  /// Shares both services, which must not be null, for the life of the parser.
  TaskSnippetParserImpl(
      const std::shared_ptr<shared::appendix::AppendixBuilder>& appendixBuilder,
      const std::shared_ptr<services::ParserServicesProvider>& parserServicesProvider);
  TaskSnippetParserImpl(const TaskSnippetParserImpl&) = delete;
  TaskSnippetParserImpl& operator=(const TaskSnippetParserImpl&) = delete;
  ~TaskSnippetParserImpl() override;

  /// Returns whether the line has a task marker or its kind is 3.
  bool canParse(const Snippet& snippet) override;

  /// Adds the header, if the line opens a task, and the line node. The kind of the result is 3
  /// while a task is open, else 0.
  ///
  /// A line that opens and closes a task, and begins with a marker, adds the header only. A line
  /// with a task marker outside a task scans `snippet.auxiliaryText`, unless it is the block that
  /// was scanned last: an equal `blockVersion` other than 0 says so, else the texts are compared.
  ParseResult parse(std::shared_ptr<document::kdzero::TesseraDocument> document,
                    const Snippet& snippet) override;

  /// Forgets the open task, the overlapping ids, the last block and the data of failures.
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

  bool hasMatchingTaskMarker(const Snippet& snippet, const syntax::Marker& taskMarker);
  void closeTask(const document::kdzero::TesseraDocument& document);

  // The provider is released before the appendix builder.
  std::shared_ptr<shared::appendix::AppendixBuilder> appendixBuilder;
  std::shared_ptr<services::ParserServicesProvider> parserServicesProvider;
  /// Lines counted for the open task; 0 when none is open. Wraps after 65,535.
  std::uint16_t taskLineCount = 0;
  /// Index of the open task's header among the top-level nodes.
  std::uint64_t taskNodeIndex = 0;
  fl::i18n::ustring currentTaskId;
  /// Ids of task markers met inside another task; they do not open a task until `reset`. Ordered:
  /// authors choose the ids, and chosen collisions would make a hash table quadratic.
  std::set<fl::i18n::ustring> overlappingTaskIds;
  task::TaskIdCounts taskIdCounts;
  task::TaskFailures taskFailures;
};

}  // namespace quenlith::build::markup::code

#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "document/kdzero/TesseraDocument.hpp"
#include "oracle/support/LogRecorder.hpp"
#include "oracle/support/NodeRecord.hpp"
#include "oracle/support/World.hpp"
#include "oracle/support/WorldAppendix.hpp"
#include "oracle/support/services.hpp"
#include "quenlith/build/markup/ParseResult.hpp"
#include "quenlith/build/markup/Snippet.hpp"

namespace quenlith::conformance {

using build::markup::ParseResult;
using build::markup::Snippet;
using build::markup::SnippetType;
using oracle::AnswerRule;
using oracle::ContributionRecord;
using oracle::FailureRecord;
using oracle::JsonMap;
using oracle::NodeKind;
using oracle::NodeRecord;
using oracle::TaskRecord;
using oracle::ustring;
using oracle::WorldPlan;
using syntax::Marker;

/// Returns a rule that accepts every marker of one element.
AnswerRule takes(const ustring& element);

Snippet snippetOf(const ustring& text, std::uint8_t kind = 0, const ustring& block = {});

/// What a parser under test needs: a document, the services of a plan and a recorder of messages.
class ParserHost {
 public:
  explicit ParserHost(const WorldPlan& plan = {});

  /// Parses `text` with a new line node parser service.
  ParseResult parseLine(const ustring& text, const ParseResult& given = {});
  /// Parses `text` into a new document and returns its node.
  NodeRecord onlyLine(const ustring& text);

  std::vector<NodeRecord> nodes() const;
  /// The messages since the last call, in order.
  std::vector<std::string> takeMessages();
  /// Every call of a service and every message since the last call, in order.
  std::vector<std::string> takeTrace();

  oracle::World world;
  oracle::LogRecorder recorder;
  std::shared_ptr<oracle::WorldProvider> provider;
  std::shared_ptr<oracle::WorldAppendix> appendix;
  std::shared_ptr<document::kdzero::TesseraDocument> document;
};

/// The texts of the children of `node`.
std::vector<ustring> childTexts(const NodeRecord& node);

}  // namespace quenlith::conformance

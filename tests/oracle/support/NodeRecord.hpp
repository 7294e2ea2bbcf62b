#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "fl/i18n/ustring.hpp"
#include "foundation/json/Value.hpp"

namespace quenlith::oracle {

using fl::i18n::ustring;
using JsonMap = std::map<std::string, foundation::json::Value>;

/// One parser failure as plain data.
struct FailureRecord {
  ustring failureId;
  ustring featureId;
  ustring subFeatureId;
  ustring markerId;
  JsonMap data;

  friend bool operator==(const FailureRecord&, const FailureRecord&) = default;
};

/// One contributor's data of a node as plain data, with one map for each line data element.
struct ContributionRecord {
  ustring feature;
  std::vector<JsonMap> lineData;

  friend bool operator==(const ContributionRecord&, const ContributionRecord&) = default;
};

/// The settings of a task as plain data.
struct TaskRecord {
  ustring taskId;
  ustring text;
  ustring appIdentifier;
  ustring appState;
  ustring appVariables;
  ustring appVariablesUserMap;
  ustring view;
  ustring executionModel;
  ustring autoRun;
  ustring collapsed;
  std::uint16_t numCodeLines = 0;

  friend bool operator==(const TaskRecord&, const TaskRecord&) = default;
};

enum class NodeKind { kLine, kPlainText, kTaskLine, kTaskInline, kOther };

/// One node and its descendants as plain data.
struct NodeRecord {
  NodeKind kind = NodeKind::kOther;
  /// Only for plain text nodes.
  ustring text;
  ustring anchorId;
  /// Only for inline task nodes, like `task`.
  ustring id;
  TaskRecord task;
  std::vector<NodeRecord> children;
  std::vector<ContributionRecord> contributions;
  std::vector<FailureRecord> failures;

  static NodeRecord plainText(const ustring& text);
  static NodeRecord of(NodeKind kind);
  /// Appends `failure` unless there is an equal one.
  void addFailure(const FailureRecord& failure);

  friend bool operator==(const NodeRecord&, const NodeRecord&) = default;
};

/// The top-level nodes of a document.
using DocumentRecord = std::vector<NodeRecord>;

/// Returns one readable line for each node, failure and contribution, indented by depth.
std::vector<std::string> listing(const DocumentRecord& document);

}  // namespace quenlith::oracle

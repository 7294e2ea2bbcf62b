#include "tessera/tree/describe.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <utility>

#include "fl/i18n/ustring.hpp"
#include "foundation/json/Writer.hpp"
#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/scan/markerText.hpp"
#include "tessera/diagnostics/terminalText.hpp"
#include "tessera/formats/NodeKind.hpp"
#include "tessera/pieces/OutputNode.hpp"
#include "tessera/pieces/PieceNode.hpp"

namespace tessera::tree {

using check::catalogue::DiagnosticKind;
using check::catalogue::messageOf;
using check::scan::plainText;
using check::scan::quoted;
using document::kdzero::Node;
using failures::kdzero::ParserFailure;
using foundation::json::Array;
using foundation::json::Object;
using foundation::json::Value;
using tessera::contentmodel::kdzero::LiveTaskData;

namespace forms = check::catalogue::forms;

namespace {

constexpr std::size_t kLongestBytes = 100;
constexpr std::string_view kCut = "...";

bool isContinuationByte(char byte) noexcept {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// Cuts a long text at its end.
std::string shortened(std::string text, Detail detail) {
  if (detail == Detail::kFull || text.size() <= kLongestBytes) return text;
  std::size_t size = kLongestBytes - kCut.size();
  while (isContinuationByte(text[size])) --size;
  text.resize(size);
  return text += kCut;
}

/// Writes values as JSON, and stops where the rest would be cut: many failures may have the data of
/// one large entry.
class JsonPreview {
 public:
  explicit JsonPreview(Detail detail)
      : mostBytes(detail == Detail::kFull ? std::string::npos : kLongestBytes) {}

  void add(const Object& members) {
    writer.beginObject();
    for (const auto& [key, value] : members) {
      if (isFull()) break;
      writer.key(beginningOf(key));
      add(value);
    }
    writer.endObject();
  }

  /// The depth of the calls is at most the number of bytes, as each writes a bracket.
  void add(const Value& value) {
    if (mostBytes == std::string::npos) return writer.value(value);
    if (const auto* object = value.getIf<Object>()) return add(*object);
    if (const auto* array = value.getIf<Array>()) return add(*array);
    if (const auto* text = value.getIf<std::string>()) return writer.text(beginningOf(*text));
    writer.value(value);
  }

  bool isFull() const { return json.size() > mostBytes; }

  /// Returns `text`, or more than the longest part of it that is shown.
  std::string_view beginningOf(std::string_view text) const {
    if (text.size() <= mostBytes) return text;
    std::size_t size = std::min(text.size(), mostBytes + 4);
    while (size < text.size() && isContinuationByte(text[size])) --size;
    return text.substr(0, size);
  }

  std::string text() const { return diagnostics::terminalText(json); }

 private:
  void add(const Array& elements) {
    writer.beginArray();
    for (const Value& element : elements) {
      if (isFull()) break;
      add(element);
    }
    writer.endArray();
  }

  std::size_t mostBytes;
  std::string json;
  foundation::json::Writer writer{json, foundation::json::Form::kCompact};
};

template <typename T>
std::string jsonText(const T& value, Detail detail) {
  JsonPreview preview(detail);
  preview.add(value);
  return shortened(preview.text(), detail);
}

/// Returns the members in words: "key value, key value".
std::string describeMembers(const Object& members, Detail detail) {
  std::string text;
  for (const auto& [key, value] : members) {
    if (detail != Detail::kFull && text.size() > kLongestBytes) break;
    if (!text.empty()) text += ", ";
    JsonPreview preview(detail);
    preview.add(value);
    text += diagnostics::terminalText(preview.beginningOf(key)) + " " + preview.text();
  }
  return shortened(std::move(text), detail);
}

bool isNameUnit(char16_t unit) {
  const auto lower = static_cast<char16_t>(unit | 0x20U);
  return (unit >= u'0' && unit <= u'9') || (lower >= u'a' && lower <= u'z') || unit == u'_' ||
         unit == u'-' || unit == u'.' || unit >= 0x80;
}

/// Returns whether `text` is a name that is shown as it is.
bool isName(std::u16string_view text) {
  return std::ranges::all_of(text, isNameUnit) && diagnostics::isShownAsItIs(text);
}

/// Returns the text of a setting: JSON and names as they are, other text in quotes.
std::string settingText(std::u16string_view text, Detail detail) {
  const bool isBare = text.starts_with(u'{') || text.starts_with(u'[') || isName(text);
  return shortened(isBare ? plainText(text) : diagnostics::quotedText(text), detail);
}

/// The range that a failure's data names.
struct FailedRange {
  double begin = 0;
  double end = 0;
  std::string text;
};

std::optional<FailedRange> failedRange(const Object& data) {
  const auto position = data.find("position");
  if (position == data.end() || data.size() != 1) return std::nullopt;
  const auto* numbers = position->second.getIf<foundation::json::Array>();
  if (numbers == nullptr || numbers->size() != 2) return std::nullopt;
  const double* begin = (*numbers)[0].getIf<double>();
  const double* end = (*numbers)[1].getIf<double>();
  if (begin == nullptr || end == nullptr) return std::nullopt;
  return FailedRange{*begin, *end, jsonText(position->second, Detail::kFull)};
}

/// Returns what is wrong with the range of `marker`, as far as its numbers tell.
std::string describeRange(const FailedRange& range, const std::string& feature,
                          const std::string& marker) {
  // Larger numbers are not exact: different ones may look equal.
  constexpr double kLargestExact = 9007199254740991.0;
  constexpr DiagnosticKind kKind = DiagnosticKind::kInvalidPositionData;
  const bool isExact = range.begin <= kLargestExact && range.end <= kLargestExact;
  if (!isExact || range.begin < range.end) {
    return messageOf(kKind, forms::kRangeUnexplained, {feature, marker}) + ": " + range.text;
  }
  const auto form = range.begin > range.end ? forms::kRangeReversed : forms::kRangeEmpty;
  return messageOf(kKind, form, {range.text}) + " (" + feature + " marker " + marker + ")";
}

/// Returns what a failure means, with its data.
std::string explainFailure(const ParserFailure& failure, Detail detail) {
  const auto& info = failure.getMarkerInfo();
  const std::string feature = plainText(info.getFeatureId());
  const std::string marker =
      info.getMarkerId().empty() ? "without an id" : quoted(info.getMarkerId());
  const std::string element = feature.empty() ? "" : feature + " ";
  const std::string id = plainText(failure.getFailureId());
  std::string text;
  if (id == "invalid_position_data" && !feature.empty()) {
    const auto range = failedRange(failure.getFailureData());
    if (range) return describeRange(*range, feature, marker);
    text = messageOf(DiagnosticKind::kInvalidPositionData, forms::kRangeUnexplained,
                     {feature, marker});
  } else if (id == "missing_task_marker_pair") {
    text = messageOf(DiagnosticKind::kMissingTaskMarkerPair, forms::kPairUnexplained, {marker});
  } else if (id == "overlapping_task_marker") {
    text = messageOf(DiagnosticKind::kOverlappingTaskMarker, forms::kOverlapUnexplained, {marker});
  } else {
    text = messageOf(DiagnosticKind::kParserFailure, 0, {element + "marker " + marker, id});
  }
  if (failure.getFailureData().empty()) return text;
  // The data of a task marker's failure is its entry in the appendix.
  const std::string_view kind = info.getFeatureId() == u"task" ? "its settings: " : "";
  return text.append(" (").append(kind) + describeMembers(failure.getFailureData(), detail) + ")";
}

}  // namespace

std::string idText(std::u16string_view id) {
  return isName(id) ? plainText(id) : quoted(id);
}

std::string describeNode(const Node& node, Detail detail) {
  if (formats::kindOf(node) != formats::NodeKind::kPiece) {
    return plainText(node->getMetaClass().getName());
  }
  const auto* piece = static_cast<const pieces::PieceNode::Impl*>(node.get());
  const bool isOutput = &node->getMetaClass() == &pieces::OutputNode::Impl::classOf();
  std::string text = isOutput ? "output" : "control";
  if (!piece->getType().empty()) text += ":" + idText(piece->getType());
  if (!piece->getId().empty()) text += " #" + idText(piece->getId());
  if (detail == Detail::kFull) {
    const auto& [begin, end] = piece->getRange();
    text += " [" + std::to_string(begin) + "," + std::to_string(end) + "]";
  }
  if (!piece->getData().empty()) text += " " + jsonText(piece->getData(), detail);
  return text;
}

std::string describeTask(std::u16string_view id, const LiveTaskData& data) {
  std::string text = "task";
  if (!id.empty()) text += " #" + idText(id);
  if (!data.getText().empty()) text += " " + quoted(data.getText());
  const std::uint16_t lines = data.getNumCodeLines();
  if (lines != 0) text += ", " + std::to_string(lines) + (lines == 1 ? " line" : " lines");
  return text;
}

std::string describeSettings(const LiveTaskData& data, std::u16string_view id, Detail detail) {
  const bool isFull = detail == Detail::kFull;
  const std::array<std::pair<std::string_view, std::u16string_view>, 10> settings{{
      {"uniqueId", !isFull && data.getTaskId() == id ? std::u16string_view() : data.getTaskId()},
      {"text", isFull ? std::u16string_view(data.getText()) : std::u16string_view()},
      {"taskClassDefFile", data.getAppIdentifier()},
      {"run", data.getExecutionModel()},
      {"autorun", data.getAutoRun()},
      {"collapsed", data.getCollapsed()},
      {"outputs", data.getAppVariables()},
      {"variablesMap", data.getAppVariablesUserMap()},
      {"appState", data.getAppState()},
      {"view", data.getView()},
  }};
  std::string text;
  for (const auto& [key, value] : settings) {
    const bool isSwitch = key == "autorun" || key == "collapsed";
    if (value.empty() || (!isFull && isSwitch && value == u"false")) continue;
    if (!text.empty()) text += ", ";
    text.append(key).append(1, ' ').append(settingText(value, detail));
  }
  return text;
}

std::string describeFailure(const ParserFailure& failure, Detail detail) {
  return "failure: " + explainFailure(failure, detail) + " [" + plainText(failure.getFailureId()) +
         "]";
}

std::string describeContribution(const contributors::kdzero::NodeContributorData& contribution,
                                 Detail detail) {
  std::string text;
  for (const auto& line : contribution->getLineDataList()) {
    text += " " + jsonText(line->getData(), Detail::kFull);
  }
  return idText(contribution->getContributingFeature()) + ":" + shortened(std::move(text), detail);
}

}  // namespace tessera::tree

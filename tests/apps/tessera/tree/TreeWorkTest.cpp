#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "apps/tessera/support/ParsedDocument.hpp"
#include "apps/tessera/support/nodes.hpp"
#include "support/CountedWork.hpp"
#include "tessera/pieces/OutputNode.hpp"
#include "tessera/tree/DocumentTree.hpp"

namespace {

using document::kdzero::LineNode;
using document::kdzero::Node;
using tessera::formats::Records;
using tessera::pieces::OutputNode;
using tessera::terminal::RowFolder;
using tessera::tree::DocumentTree;
using tessera::tree::TreeStyle;

constexpr std::size_t kLineParts = 8000;

void addText(const LineNode& line, const kd::zero::Model& model, std::u16string_view text) {
  line->getChildrenMutable().add(nodes::makeText(model, text));
}

/// Adds a piece of the marker numbered `marker`.
void addPiece(const LineNode& line, const kd::zero::Model& model, std::uint64_t marker) {
  const OutputNode piece = OutputNode::Builder(model).createOutputNode({});
  piece->setText(u"piece");
  piece->setRange({marker, marker + 1});
  line->getChildrenMutable().add(piece);
}

/// A line of `count` similar parts.
struct HostileLine {
  std::string name;
  std::function<void(const LineNode& line, const kd::zero::Model& model, std::size_t count)> fill;
};

HostileLine repeated(const std::string& name, const std::u16string& part) {
  return {name, [part](const LineNode& line, const kd::zero::Model& model, std::size_t count) {
            std::u16string text;
            for (std::size_t i = 0; i < count; ++i) text += part;
            addText(line, model, text);
          }};
}

const std::vector<HostileLine> kHostileLines{
    repeated("words", u"word "),
    repeated("text without a blank", u"word"),
    repeated("tabs", u"\t"),
    repeated("hidden characters", u"\u200B"),
    repeated("beginnings of numbers", u"<U+0"),
    repeated("one cluster without columns", u"\u0301"),
    repeated("one wide cluster", u"\u1112"),
    repeated("emoji joined to one", u"👩\u200D"),
    {"pieces",
     [](const LineNode& line, const kd::zero::Model& model, std::size_t count) {
       for (std::size_t i = 0; i < count; ++i) addPiece(line, model, i);
     }},
    {"pieces of one marker",
     [](const LineNode& line, const kd::zero::Model& model, std::size_t count) {
       for (std::size_t i = 0; i < count; ++i) {
         addPiece(line, model, 0);
         addText(line, model, u" ");
       }
     }},
    {"pieces within each other",
     [](const LineNode& line, const kd::zero::Model& model, std::size_t count) {
       for (std::size_t i = 0; i < count / 2; ++i) addPiece(line, model, i);
       for (std::size_t i = count / 2; i > 0; --i) addPiece(line, model, i - 1);
     }},
    {"failures",
     [](const LineNode& line, const kd::zero::Model& /*model*/, std::size_t count) {
       for (std::size_t i = 0; i < count; ++i) {
         failures::kdzero::ParserFailure failure;
         const std::string id = std::to_string(i);
         failure.setFailureId(std::u16string(id.begin(), id.end()));
         line->getParserFailuresMutable().add(failure);
       }
     }},
};

struct Cost {
  std::uint64_t work = 0;
  std::size_t bytes = 0;
};

Cost costOf(const HostileLine& hostile, std::size_t count, const TreeStyle& style) {
  ParsedDocument document;
  const LineNode line = nodes::makeLine(document.model());
  hostile.fill(line, document.model(), count);
  document.addLine(line);
  WrittenText output;
  const std::uint64_t before = quenlith::test::countedWork();
  DocumentTree(output, style, Records::kHidden).write(document.result());
  return {quenlith::test::countedWork() - before, output.text().size() + output.all().size()};
}

// Twice the line may take at most 2.3 times the work: the labels of a row are sorted.
TEST(TreeWork, IsLinear) {
  for (const std::size_t columns : {RowFolder::kUnlimited, std::size_t{40}}) {
    for (const bool color : {false, true}) {
      for (const HostileLine& hostile : kHostileLines) {
        const TreeStyle style{.color = color, .columns = columns};
        const Cost half = costOf(hostile, kLineParts / 2, style);
        const Cost whole = costOf(hostile, kLineParts, style);
        EXPECT_GT(whole.work, 0U) << hostile.name;
        EXPECT_LT(whole.work, half.work * 23 / 10 + 10000) << hostile.name;
        EXPECT_LT(whole.bytes, half.bytes * 23 / 10 + 10000) << hostile.name;
      }
    }
  }
}

}  // namespace

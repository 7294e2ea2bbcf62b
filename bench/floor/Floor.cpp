#include "floor/Floor.hpp"

#include <cstdint>
#include <cstring>
#include <new>
#include <optional>

#include "floor/Arena.hpp"
#include "floor/findMarkerStart.hpp"

namespace bench::floor {

namespace {

struct Node {
  enum class Kind : std::uint32_t { kLine, kText };

  explicit Node(Kind nodeKind) noexcept : kind(nodeKind) {}

  std::uint32_t references = 1;
  Kind kind;
  Node* container = nullptr;
};

struct TextNode : Node {
  explicit TextNode(std::u16string_view ownText) noexcept : Node(Kind::kText), text(ownText) {}

  std::u16string_view text;
};

struct LineNode : Node {
  LineNode() noexcept : Node(Kind::kLine) {}

  void append(TextNode& node) noexcept {
    node.container = this;
    child = &node;
    ++children;
  }

  TextNode* child = nullptr;
  std::uint64_t children = 0;
};

/// The nodes of all lines, in order.
class Document {
 public:
  void add(std::u16string_view line) {
    if (findMarkerStart(line) != line.size()) ++lines;
    auto* const lineNode = new (arena.allocate(sizeof(LineNode))) LineNode;
    lineNode->append(*makeText(line));
    nodes.push_back(lineNode);
  }

  const std::vector<LineNode*>& lineNodes() const noexcept { return nodes; }
  std::size_t linesWithMarker() const noexcept { return lines; }

 private:
  TextNode* makeText(std::u16string_view line) {
    const std::size_t bytes = line.size() * sizeof(char16_t);
    auto* const room = static_cast<std::byte*>(arena.allocate(sizeof(TextNode) + bytes));
    auto* const copy = reinterpret_cast<char16_t*>(room + sizeof(TextNode));
    std::memcpy(copy, line.data(), bytes);
    return new (room) TextNode({copy, line.size()});
  }

  Arena arena;
  std::vector<LineNode*> nodes;
  std::size_t lines = 0;
};

class Floor : public Subject {
 public:
  explicit Floor(const Corpus& lines) : corpus(lines) {}

  void build() override {
    document.emplace();
    for (const auto& snippet : corpus.snippets()) document->add(snippet.text);
  }

  void check() const override {
    std::size_t units = 0;
    std::size_t texts = 0;
    for (const LineNode* line : document->lineNodes()) {
      texts += line->children;
      units += line->child->text.size();
    }
    expectCount("floor, lines", document->lineNodes().size(), corpus.lineCount());
    expectCount("floor, texts", texts, corpus.lineCount());
    expectCount("floor, units of text", units, corpus.unitCount());
    expectCount("floor, lines with a marker", document->linesWithMarker(),
                corpus.linesWithMarker());
  }

  void destroy() override { document.reset(); }

 private:
  const Corpus& corpus;
  std::optional<Document> document;
};

}  // namespace

std::unique_ptr<Subject> make(const Corpus& corpus) {
  return std::make_unique<Floor>(corpus);
}

}  // namespace bench::floor

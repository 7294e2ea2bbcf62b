#include <cmark.h>

#include <stdexcept>

#include "peers/peers.hpp"

namespace bench::peers {

namespace {

struct EndOfTree {
  void operator()(cmark_node* root) const noexcept { cmark_node_free(root); }
};

struct Walk {
  std::size_t nodes = 0;
  std::size_t letters = 0;
};

Walk walk(cmark_node* root) {
  Walk found;
  cmark_iter* const nodes = cmark_iter_new(root);
  for (cmark_event_type event{}; (event = cmark_iter_next(nodes)) != CMARK_EVENT_DONE;) {
    if (event != CMARK_EVENT_ENTER) continue;
    ++found.nodes;
    const char* const text = cmark_node_get_literal(cmark_iter_get_node(nodes));
    if (text != nullptr) found.letters += countLetters(text);
  }
  cmark_iter_free(nodes);
  return found;
}

class Cmark : public Subject {
 public:
  explicit Cmark(const Corpus& lines)
      : corpus(lines), text(lines.text()), letters(countLetters(text)) {}

  void build() override {
    root.reset(cmark_parse_document(text.data(), text.size(), CMARK_OPT_DEFAULT));
  }

  void check() const override {
    const Walk found = walk(root.get());
    // Link destinations and link reference definitions are not part of the text of the tree.
    if (found.letters < letters / 100 * 95)
      throw std::runtime_error("cmark lost text of the lines");
    if (found.nodes < corpus.lineCount() / 2) throw std::runtime_error("cmark made too few nodes");
    expectCount("cmark, lines", static_cast<std::size_t>(cmark_node_get_end_line(root.get())),
                corpus.lineCount());
  }

  void destroy() override { root.reset(); }

 private:
  const Corpus& corpus;
  std::string text;
  std::size_t letters;
  std::unique_ptr<cmark_node, EndOfTree> root;
};

}  // namespace

std::unique_ptr<Subject> makeCmark(const Corpus& corpus) {
  return std::make_unique<Cmark>(corpus);
}

}  // namespace bench::peers

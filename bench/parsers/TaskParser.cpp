#include <string>
#include <vector>

#include "parsers/CachedLists.hpp"
#include "parsers/parsers.hpp"
#include "quenlith/build/markup/code/CodeSnippetParserImpl.hpp"
#include "quenlith/build/markup/code/TaskSnippetParserImpl.hpp"
#include "quenlith/shared/appendix/MarkerAppendix.hpp"

namespace bench::parsers {

namespace {

using document::kdzero::TesseraDocument;
using fl::i18n::ustring;
using quenlith::build::markup::Snippet;
using quenlith::build::markup::SnippetParser;
using quenlith::build::markup::code::CodeSnippetParserImpl;
using quenlith::build::markup::code::TaskSnippetParserImpl;

/// Sources of a thousand lines with a task in the last ten of each hundred lines, passed to the two
/// snippet parsers as a host does.
class TaskParser : public Subject {
 public:
  explicit TaskParser(const Corpus& lines) : lineCount(lines.lineCount()) {
    for (std::size_t line = 0; line < lineCount; ++line) {
      ustring text = lines.snippets()[line].text;
      if (isMarked(line)) text += marker(line);
      if (line % kSourceLines == 0) blocks.emplace_back();
      (blocks.back() += text) += u'\n';
      texts.push_back(std::move(text));
    }
  }

  void build() override {
    document = std::make_shared<TesseraDocument>();
    for (std::size_t line = 0; line < lineCount; ++line) {
      if (line % kSourceLines == 0) beginSource(line / kSourceLines);
      snippet.text = texts[line];
      SnippetParser& parser =
          tasks.canParse(snippet) ? static_cast<SnippetParser&>(tasks) : defaultParser;
      snippet.type = parser.parse(document, snippet).type;
    }
  }
  void check() const override {
    expectCount("task parser, nodes", document->getNumberOfChildren(),
                lineCount + lineCount / kEvery);
  }
  void destroy() override {
    document.reset();
    tasks.reset();
    snippet = Snippet();
  }

 private:
  static constexpr std::size_t kSourceLines = 1000;
  static constexpr std::size_t kEvery = 100;
  static constexpr std::size_t kTaskLines = 10;

  static bool isMarked(std::size_t line) {
    const std::size_t place = line % kEvery;
    return place == kEvery - kTaskLines || place == kEvery - 1;
  }
  static ustring marker(std::size_t line) {
    return fl::i18n::utf8_to_ustring("  # <@task#t" + std::to_string(line / kEvery) + ">");
  }
  void beginSource(std::size_t number) {
    tasks.reset();
    snippet.type = {};
    snippet.auxiliaryText = blocks[number];
  }

  std::size_t lineCount;
  std::vector<ustring> texts;
  std::vector<ustring> blocks;
  std::shared_ptr<CachedLists> provider = std::make_shared<CachedLists>();
  TaskSnippetParserImpl tasks{std::make_shared<quenlith::shared::appendix::MarkerAppendix>(),
                              provider};
  CodeSnippetParserImpl defaultParser{provider};
  Snippet snippet;
  std::shared_ptr<TesseraDocument> document;
};

}  // namespace

std::unique_ptr<Subject> makeTaskParser(const Corpus& corpus) {
  return std::make_unique<TaskParser>(corpus);
}

}  // namespace bench::parsers

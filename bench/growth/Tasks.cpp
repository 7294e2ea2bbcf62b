#include <stdexcept>
#include <string>

#include "growth/subjects.hpp"
#include "parsers/CachedLists.hpp"
#include "quenlith/build/markup/code/TaskSnippetParserImpl.hpp"
#include "quenlith/shared/appendix/MarkerAppendix.hpp"

namespace bench::growth {

namespace {

using document::kdzero::TesseraDocument;
using quenlith::build::markup::ParseResult;
using quenlith::build::markup::Snippet;
using quenlith::build::markup::code::TaskSnippetParserImpl;
using quenlith::shared::appendix::MarkerAppendix;

std::string taskLine(std::size_t number) {
  return "fit(x)  # <@task#t" + std::to_string(number) + ">";
}

/// Opens and closes tasks whose markers are all in one block: two lines per task.
class Tasks : public Subject {
 public:
  /// Opens and closes `taskCount` tasks, of which `taskIds` differ, in a block of at least
  /// `blockLines` lines.
  Tasks(std::size_t taskCount, std::size_t taskIds, std::size_t blockLines)
      : tasks(taskCount), ids(taskIds) {
    std::string block;
    for (std::size_t id = 0; id < ids; ++id) {
      block += taskLine(id) + '\n' + taskLine(id) + '\n';
      lines.push_back(fl::i18n::utf8_to_ustring(taskLine(id)));
    }
    for (std::size_t line = 2 * ids; line < blockLines; ++line) block += "y = model.fit(x)\n";
    snippet.auxiliaryText = fl::i18n::utf8_to_ustring(block);
  }

  void build() override {
    document = std::make_shared<TesseraDocument>();
    parser = std::make_unique<TaskSnippetParserImpl>(std::make_shared<MarkerAppendix>(),
                                                     std::make_shared<parsers::CachedLists>());
    for (std::size_t task = 0; task < tasks; ++task) {
      snippet.text = lines[task % ids];
      // The line that opens the task, then the one that closes it.
      for (int line = 0; line < 2; ++line) snippet.type = parser->parse(document, snippet).type;
    }
  }
  void check() const override {
    expectCount("tasks, nodes", document->getNumberOfChildren(), 3 * tasks);
    expectCount("tasks, kind in the end", snippet.type.kind, 0);
  }
  void destroy() override {
    document.reset();
    parser.reset();
  }

 private:
  std::size_t tasks;
  std::size_t ids;
  std::vector<fl::i18n::ustring> lines;
  Snippet snippet;
  std::unique_ptr<TaskSnippetParserImpl> parser;
  std::shared_ptr<TesseraDocument> document;
};

}  // namespace

std::unique_ptr<Subject> makeTasks(const Corpus& /*lines*/, std::size_t count) {
  constexpr std::size_t kIds = 50;
  return std::make_unique<Tasks>(count, kIds, 2 * kIds);
}

std::unique_ptr<Subject> makeBlock(const Corpus& /*lines*/, std::size_t count) {
  constexpr std::size_t kTasks = 10;
  return std::make_unique<Tasks>(kTasks, kTasks, count);
}

}  // namespace bench::growth

#include "tessera/commands/LivePage.hpp"

#include <algorithm>
#include <string_view>
#include <utility>

#include "tessera/commands/PageCollector.hpp"
#include "tessera/commands/PageJob.hpp"
#include "tessera/files/OutputFile.hpp"
#include "tessera/files/SpoolFile.hpp"

namespace tessera::commands {
namespace {

std::string readAll(files::SpoolFile& file) {
  std::string all;
  std::string piece;
  file.rewind();
  for (file.read(piece); !piece.empty(); file.read(piece)) all += piece;
  return all;
}

bool isSameList(const std::vector<inputs::Input>& first, const std::vector<inputs::Input>& second) {
  return std::ranges::equal(first, second, {}, &inputs::Input::path, &inputs::Input::path);
}

}  // namespace

/// The sections of the files, and the parsers that make them.
class LivePage::Sections {
 public:
  /// Borrows both.
  Sections(const ParseOptions& options, const std::vector<inputs::Input>& files)
      : files(files),
        job(options, files, nullptr,
            {.output = buffer, .messages = messages, .progress = progress}),
        parsed(files.size()) {}

  void parse(std::size_t index) {
    parsed[index].outcome = job.run(index);
    parsed[index].text = buffer.take();
  }

  std::string join() const {
    files::SpoolFile page;
    PageCollector collector(files, page.output(), html::PageUse::kLive);
    for (std::size_t i = 0; i < parsed.size(); ++i) {
      collector.addText(parsed[i].text);
      collector.endInput(i, parsed[i].outcome);
    }
    collector.finish();
    return readAll(page);
  }

 private:
  class TextBuffer final : public files::OutputText {
   public:
    std::string take() {
      flush();
      return std::exchange(written, {});
    }

   private:
    void write(std::string_view piece) override { written += piece; }

    std::string written;
  };

  /// The page shows the problems.
  class NoMessages final : public workers::Messages {
   public:
    void report(std::string_view /*message*/) override {}
  };

  struct Parsed {
    workers::Outcome outcome = workers::Outcome::kSkipped;
    std::string text;
  };

  const std::vector<inputs::Input>& files;
  TextBuffer buffer;
  NoMessages messages;
  progress::InputProgress progress;
  PageJob job;
  std::vector<Parsed> parsed;
};

LivePage::LivePage(const ViewOptions& options, std::vector<inputs::Input> inputs)
    : files(std::move(inputs)) {
  parseOptions.bundles = options.bundles;
  parseOptions.pieces = options.pieces;
  parseAll();
}

LivePage::~LivePage() = default;

/// The number of a file is part of its section: another list needs other sections. There are none
/// when they could not be made.
void LivePage::parseAll() {
  // One framework at a time.
  sections.reset();
  sections = std::make_unique<Sections>(parseOptions, files);
  for (std::size_t i = 0; i < files.size(); ++i) sections->parse(i);
}

bool LivePage::update(const view::Changes& changes, std::vector<inputs::Input> listed) {
  if (changes.isUnknown || sections == nullptr || !isSameList(files, listed)) {
    files = std::move(listed);
    parseAll();
    return true;
  }
  bool isOther = false;
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (!changes.touched.contains(files[i].path)) continue;
    sections->parse(i);
    isOther = true;
  }
  return isOther;
}

std::string LivePage::html() const {
  return sections->join();
}

}  // namespace tessera::commands

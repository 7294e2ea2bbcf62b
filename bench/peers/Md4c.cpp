#include <md4c.h>

#include <cstdint>
#include <stdexcept>

#include "peers/peers.hpp"

namespace bench::peers {

namespace {

struct Events {
  std::size_t blocks = 0;
  std::size_t spans = 0;
  std::size_t textBytes = 0;
  // Counted only if `countsLetters` is set, because counting would add to the measured time.
  std::size_t letters = 0;
  bool countsLetters = false;
};

int enterBlock(MD_BLOCKTYPE /*type*/, void* /*detail*/, void* events) {
  ++static_cast<Events*>(events)->blocks;
  return 0;
}

int enterSpan(MD_SPANTYPE /*type*/, void* /*detail*/, void* events) {
  ++static_cast<Events*>(events)->spans;
  return 0;
}

int leaveBlock(MD_BLOCKTYPE /*type*/, void* /*detail*/, void* /*events*/) {
  return 0;
}

int leaveSpan(MD_SPANTYPE /*type*/, void* /*detail*/, void* /*events*/) {
  return 0;
}

int takeText(MD_TEXTTYPE /*type*/, const MD_CHAR* text, MD_SIZE size, void* user) {
  auto& events = *static_cast<Events*>(user);
  events.textBytes += size;
  if (events.countsLetters) events.letters += countLetters({text, size});
  return 0;
}

class Md4c : public Subject {
 public:
  explicit Md4c(const Corpus& lines) : text(lines.text()) {
    wanted.countsLetters = true;
    parse(wanted);
    // Only link destinations and link reference definitions are not text.
    if (wanted.letters < countLetters(text) / 100 * 95) {
      throw std::runtime_error("md4c lost text of the lines");
    }
  }

  void build() override {
    found = Events();
    parse(found);
  }

  void check() const override {
    expectCount("md4c, blocks", found.blocks, wanted.blocks);
    expectCount("md4c, spans", found.spans, wanted.spans);
    expectCount("md4c, bytes of text", found.textBytes, wanted.textBytes);
  }

 private:
  void parse(Events& events) const {
    MD_PARSER parser{};
    parser.enter_block = enterBlock;
    parser.leave_block = leaveBlock;
    parser.enter_span = enterSpan;
    parser.leave_span = leaveSpan;
    parser.text = takeText;
    if (md_parse(text.data(), static_cast<MD_SIZE>(text.size()), &parser, &events) != 0) {
      throw std::runtime_error("md4c refuses the lines");
    }
  }

  std::string text;
  Events wanted;
  Events found;
};

}  // namespace

std::unique_ptr<Subject> makeMd4c(const Corpus& corpus) {
  return std::make_unique<Md4c>(corpus);
}

}  // namespace bench::peers

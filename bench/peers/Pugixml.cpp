#include <cstring>
#include <optional>
#include <pugixml.hpp>
#include <stdexcept>

#include "peers/peers.hpp"

namespace bench::peers {

namespace {

class Pugixml : public Subject {
 public:
  explicit Pugixml(const Corpus& lines) : corpus(lines), xml(lines.xml()) {}

  void build() override {
    constexpr unsigned kOptions = pugi::parse_default | pugi::parse_ws_pcdata;
    document.emplace();
    if (!document->load_buffer(xml.data(), xml.size(), kOptions, pugi::encoding_utf8)) {
      throw std::runtime_error("pugixml refuses the lines");
    }
  }

  void check() const override {
    std::size_t lines = 0;
    std::size_t texts = 0;
    std::size_t bytes = 0;
    for (const pugi::xml_node& line : document->document_element()) {
      ++lines;
      texts += line.first_child() ? 1 : 0;
      bytes += std::strlen(line.child_value());
    }
    expectCount("pugixml, lines", lines, corpus.lineCount());
    expectCount("pugixml, texts", texts, corpus.lineCount() - corpus.emptyLineCount());
    expectCount("pugixml, bytes of text", bytes, corpus.byteCount());
  }

  void destroy() override { document.reset(); }

 private:
  const Corpus& corpus;
  std::string xml;
  std::optional<pugi::xml_document> document;
};

}  // namespace

std::unique_ptr<Subject> makePugixml(const Corpus& corpus) {
  return std::make_unique<Pugixml>(corpus);
}

}  // namespace bench::peers

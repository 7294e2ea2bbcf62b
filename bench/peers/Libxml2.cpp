#include <libxml/parser.h>
#include <libxml/tree.h>

#include <cstring>
#include <stdexcept>

#include "peers/peers.hpp"

namespace bench::peers {

namespace {

struct EndOfDocument {
  void operator()(xmlDoc* document) const noexcept { xmlFreeDoc(document); }
};

class Libxml2 : public Subject {
 public:
  explicit Libxml2(const Corpus& lines) : corpus(lines), xml(lines.xml()) {}

  void build() override {
    document.reset(xmlReadMemory(xml.data(), static_cast<int>(xml.size()), "lines.xml", "UTF-8",
                                 XML_PARSE_HUGE));
    if (document == nullptr) throw std::runtime_error("libxml2 refuses the lines");
  }

  void check() const override {
    std::size_t lines = 0;
    std::size_t bytes = 0;
    const xmlNode* const root = xmlDocGetRootElement(document.get());
    for (const xmlNode* line = root->children; line != nullptr; line = line->next) {
      ++lines;
      // Character references may split the text of a line into several nodes.
      for (const xmlNode* text = line->children; text != nullptr; text = text->next) {
        bytes += std::strlen(reinterpret_cast<const char*>(text->content));
      }
    }
    expectCount("libxml2, lines", lines, corpus.lineCount());
    expectCount("libxml2, bytes of text", bytes, corpus.byteCount());
  }

  void destroy() override { document.reset(); }

 private:
  const Corpus& corpus;
  std::string xml;
  std::unique_ptr<xmlDoc, EndOfDocument> document;
};

}  // namespace

std::unique_ptr<Subject> makeLibxml2(const Corpus& corpus) {
  return std::make_unique<Libxml2>(corpus);
}

}  // namespace bench::peers

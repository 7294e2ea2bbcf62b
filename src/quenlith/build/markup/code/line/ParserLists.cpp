#include "quenlith/build/markup/code/line/ParserLists.hpp"

#include <cstddef>
#include <optional>
#include <stdexcept>

namespace quenlith::build::markup::code::line {

CodeElementParser* ParserLists::findAccepting(const syntax::Marker& marker) const {
  for (std::size_t place = 0; place + 1 < elementParsers.size(); ++place) {
    if (elementParsers[place]->canParse(marker)) return elementParsers[place].get();
  }
  return nullptr;
}

document::kdzero::Node ParserLists::parseWithDefault(const kd::zero::Model& model,
                                                     std::u16string_view text) const {
  CodeElementParser* parser = elementParsers.back().get();
  if (parser == nullptr) {
    throw std::runtime_error(
        "no default code element parser was found: call setFramework with the running framework, "
        "and start the bundle whose CodeElementParser has the property \"priority\" = \"default\", "
        "before the first line is parsed");
  }
  return parser->parse(model, CodeElement{fl::i18n::ustring(text), std::nullopt, std::nullopt});
}

}  // namespace quenlith::build::markup::code::line

#include "quenlith/build/markup/code/LineParsers.hpp"

#include <optional>
#include <stdexcept>
#include <typeinfo>

#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"

namespace quenlith::build::markup::code {

LineParsers::LineParsers(services::ParserServicesProvider& provider)
    : contributors(provider.getLineContributorDataParsers()),
      elementParsers(provider.getCodeElementParsers()) {}

CodeElementParser* LineParsers::findAccepting(const syntax::Marker& marker) const {
  for (std::size_t place = 0; place + 1 < elementParsers.size(); ++place) {
    if (elementParsers[place]->canParse(marker)) return elementParsers[place].get();
  }
  return nullptr;
}

document::kdzero::Node LineParsers::parsePlainText(const kd::zero::Model& model,
                                                   std::u16string_view text) const {
  CodeElementParser* parser = elementParsers.back().get();
  if (parser == nullptr) {
    throw std::runtime_error(
        "no default code element parser is registered: register a CodeElementParser service with "
        "the property \"priority\" = \"default\"");
  }
  // The usual default parser is the one of this bundle. It looks at the text alone, which then
  // need not be copied into a code element first: that copy is a third of a plain line's cost.
  if (typeid(*parser) == typeid(PlainTextNodeParserImpl)) {
    return PlainTextNodeParserImpl::makeNode(model, text);
  }
  return parser->parse(model, CodeElement{fl::i18n::ustring(text), std::nullopt, std::nullopt});
}

}  // namespace quenlith::build::markup::code

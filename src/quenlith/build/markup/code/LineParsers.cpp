#include "quenlith/build/markup/code/LineParsers.hpp"

#include <stdexcept>

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

CodeElementParser& LineParsers::defaultParser() const {
  if (elementParsers.back() != nullptr) return *elementParsers.back();
  throw std::runtime_error(
      "no default code element parser is registered: register a CodeElementParser service with "
      "the property \"priority\" = \"default\"");
}

}  // namespace quenlith::build::markup::code

#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <typeinfo>
#include <vector>

#include "document/kdzero/Node.hpp"
#include "kd/zero/Model.hpp"
#include "quenlith/build/markup/code/CodeElement.hpp"
#include "quenlith/build/markup/code/CodeElementParser.hpp"
#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"
#include "quenlith/build/markup/contributordata/LineContributorDataParser.hpp"
#include "quenlith/build/markup/services/ParserServicesProvider.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace quenlith::build::markup::code::line {

/// The parsers that one line is parsed with, as the provider gave them at its start.
class ParserLists {
 public:
  /// Asks `provider` for the contributor data parsers, then for the code element parsers.
  explicit ParserLists(services::ParserServicesProvider& provider)
      : contributors(provider.getLineContributorDataParsers()),
        elementParsers(provider.getCodeElementParsers()) {}

  const std::vector<std::shared_ptr<contributordata::LineContributorDataParser>>&
  contributorDataParsers() const noexcept {
    return contributors;
  }

  /// Returns the first parser other than the default one that takes `marker`, or null.
  CodeElementParser* findAccepting(const syntax::Marker& marker) const;

  /// Returns the default parser's node for `text` that no marker owns. Throws
  /// std::runtime_error when no default parser is registered.
  document::kdzero::Node parsePlainText(const kd::zero::Model& model,
                                        std::u16string_view text) const {
    return makesPlainTextNodes() ? PlainTextNodeParserImpl::makeNode(model, text)
                                 : parseWithDefault(model, text);
  }

  /// Tells whether the default parser is the one of this bundle, as is usual. It looks at the text
  /// alone, which then need not be copied into a code element first.
  bool makesPlainTextNodes() const noexcept {
    const CodeElementParser* parser = elementParsers.back().get();
    return parser != nullptr && typeid(*parser) == typeid(PlainTextNodeParserImpl);
  }

 private:
  document::kdzero::Node parseWithDefault(const kd::zero::Model& model,
                                          std::u16string_view text) const;

  std::vector<std::shared_ptr<contributordata::LineContributorDataParser>> contributors;
  // The default parser is the last one; it may be null.
  std::vector<std::shared_ptr<CodeElementParser>> elementParsers;
};

}  // namespace quenlith::build::markup::code::line

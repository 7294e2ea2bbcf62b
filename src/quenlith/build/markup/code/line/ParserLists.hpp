#pragma once

#include <memory>
#include <string_view>
#include <typeinfo>
#include <vector>

#include "document/kdzero/Node.hpp"
#include "kd/zero/Model.hpp"
#include "quenlith/build/markup/code/CodeElement.hpp"
#include "quenlith/build/markup/code/CodeElementParser.hpp"
#include "quenlith/build/markup/code/line/makePlainTextNode.hpp"
#include "quenlith/build/markup/contributordata/LineContributorDataParser.hpp"
#include "quenlith/build/markup/services/ParserServicesProvider.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace quenlith::build::markup::code::line {

/// The parsers for one line, as the provider returned them when the line began.
class ParserLists {
 public:
  /// Asks `provider` for the contributor data parsers, then for the code element parsers.
  /// `plainTextParser` is the type of the default parser of this bundle.
  ParserLists(services::ParserServicesProvider& provider, const std::type_info& plainTextParser)
      : contributors(provider.getLineContributorDataParsers()),
        elementParsers(provider.getCodeElementParsers()),
        isPlainTextParser(isOfType(elementParsers.back().get(), plainTextParser)) {}

  const std::vector<std::shared_ptr<contributordata::LineContributorDataParser>>&
  contributorDataParsers() const noexcept {
    return contributors;
  }

  /// Returns the first non-default parser that accepts `marker`, or null.
  CodeElementParser* findAccepting(const syntax::Marker& marker) const;

  /// Returns the default parser's node for `text` that no marker owns. Throws
  /// std::runtime_error when no default parser is registered.
  document::kdzero::Node parsePlainText(const kd::zero::Model& model,
                                        std::u16string_view text) const {
    // What the parser of this bundle does is known. The shortcut saves the copy of the text into a
    // code element.
    return isPlainTextParser ? makePlainTextNode(model, text) : parseWithDefault(model, text);
  }

 private:
  static bool isOfType(const CodeElementParser* parser, const std::type_info& type) noexcept {
    // By address: two classes of the same name in two libraries compare equal, but the type
    // information of this library is hidden and so not shared with another one.
    return parser != nullptr && &typeid(*parser) == &type;
  }
  document::kdzero::Node parseWithDefault(const kd::zero::Model& model,
                                          std::u16string_view text) const;

  std::vector<std::shared_ptr<contributordata::LineContributorDataParser>> contributors;
  // The default parser is the last one; it may be null.
  std::vector<std::shared_ptr<CodeElementParser>> elementParsers;
  bool isPlainTextParser;
};

}  // namespace quenlith::build::markup::code::line

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "document/kdzero/TesseraDocument.hpp"
#include "quenlith/build/markup/services/ParserServicesProvider.hpp"
#include "quenlith/shared/appendix/AppendixBuilder.hpp"

namespace quenlith::test {

using fl::i18n::ustring;

/// The exception that a fake throws on demand.
struct ServiceFailure {};

/// Accepts the markers of one element and creates plain-text nodes whose text is "name(text)".
class FakeElementParser final : public build::markup::code::CodeElementParser {
 public:
  FakeElementParser(ustring name, ustring element)
      : ownName(std::move(name)), accepted(std::move(element)) {}

  bool canParse(const syntax::Marker& marker) override;
  document::kdzero::Node parse(const kd::zero::Model& model,
                               const build::markup::code::CodeElement& element) override;

  /// The markers that `canParse` was asked about, in order.
  std::vector<syntax::Marker> asked;
  /// The elements parsed, in order.
  std::vector<build::markup::code::CodeElement> parsed;
  bool failsToAnswer = false;
  bool failsToParse = false;
  /// Returns the empty handle instead of a node.
  bool makesNothing = false;

 private:
  ustring ownName;
  ustring accepted;
};

/// Contributes line data {"by": name, "to": id} to the markers of one element.
class FakeContributor final : public build::markup::contributordata::LineContributorDataParser {
 public:
  FakeContributor(ustring name, ustring element)
      : ownName(std::move(name)), applicable(std::move(element)) {}

  bool isApplicable(const syntax::Marker& marker) override;
  std::pair<ustring, contributors::kdzero::LineData> parse(const kd::zero::Model& model,
                                                           const syntax::Marker& marker) override;

  std::vector<syntax::Marker> asked;
  bool failsToAnswer = false;
  bool failsToParse = false;
  /// Returns the empty handle instead of line data.
  bool makesNothing = false;
  /// The model to create line data in, if not that of the line.
  kd::zero::Model otherModel;

 private:
  ustring ownName;
  ustring applicable;
};

/// Returns the lists that a test sets.
class FakeProvider final : public build::markup::services::ParserServicesProvider {
 public:
  std::vector<std::shared_ptr<build::markup::contributordata::LineContributorDataParser>>
  getLineContributorDataParsers() override;
  std::vector<std::shared_ptr<build::markup::code::CodeElementParser>> getCodeElementParsers()
      override;

  std::vector<std::shared_ptr<build::markup::contributordata::LineContributorDataParser>>
      contributors;
  std::vector<std::shared_ptr<build::markup::code::CodeElementParser>> elementParsers;
  /// The lists that were requested, in order.
  std::vector<std::string> calls;
  bool failsForContributors = false;
  bool failsForElementParsers = false;
};

/// Finds the first entry with the element and the id of a marker.
class FakeAppendix final : public shared::appendix::AppendixBuilder {
 public:
  void addEntry(const syntax::Marker& entry) override { entries.push_back(entry); }
  ustring build() const override { return {}; }
  shared::appendix::AppendixEntry findEntry(const syntax::Marker& marker) const override;

  std::vector<syntax::Marker> entries;
  mutable int asked = 0;
  /// Fails from this call of `findEntry` on; 0 is the first one.
  std::optional<int> failsAt;
  /// Called by the destructor.
  std::function<void()> atEnd;
  ~FakeAppendix() override;
};

/// The texts of the plain-text children of `node`, in order.
std::vector<ustring> childTexts(const document::kdzero::Node& node);

/// The name of a kind of marker in a result: the text of the marker with the element alone.
ustring kindText(const ustring& element);

}  // namespace quenlith::test

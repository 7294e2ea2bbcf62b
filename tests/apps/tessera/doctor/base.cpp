#include <memory>
#include <stdexcept>

#include <cppmicroservices/BundleInitialization.h>

#include "quenlith/build/markup/SnippetParser.hpp"
#include "quenlith/build/markup/code/CodeElementParser.hpp"
#include "quenlith/build/markup/services/ParserServicesProvider.hpp"
#include "quenlith/bundle/component.hpp"

// The library of the bundles of doctor_test.py, which gives it manifests.

CPPMICROSERVICES_INITIALIZE_BUNDLE

namespace faults {

using quenlith::build::markup::ParseResult;
using quenlith::build::markup::Snippet;
using quenlith::build::markup::SnippetParser;
using quenlith::build::markup::code::CodeElement;
using quenlith::build::markup::code::CodeElementParser;
using quenlith::build::markup::services::ParserServicesProvider;

class Fine : public CodeElementParser {
 public:
  bool canParse(const quenlith::syntax::Marker& /*marker*/) override { return false; }
  document::kdzero::Node parse(const kd::zero::Model& /*model*/,
                               const CodeElement& /*element*/) override {
    return {};
  }
};

class Needs : public Fine {
 public:
  explicit Needs(const std::shared_ptr<ParserServicesProvider>& /*provider*/) {}
};

class Throws : public Fine {
 public:
  Throws() { throw std::runtime_error("the dictionary is missing"); }
};

class ThrowsNumber : public Fine {
 public:
  ThrowsNumber() { throw 7; }
};

/// Accepts lines that begin with "silent", and adds nothing for them.
class Silent : public SnippetParser {
 public:
  bool canParse(const Snippet& snippet) override { return snippet.text.starts_with(u"silent"); }
  ParseResult parse(std::shared_ptr<document::kdzero::TesseraDocument> /*document*/,
                    const Snippet& /*snippet*/) override {
    return {};
  }
};

}  // namespace faults

QUENLITH_COMPONENT(faults_Fine, faults::Fine, Provides<faults::CodeElementParser>)
QUENLITH_COMPONENT(faults_Needs, faults::Needs, Provides<faults::CodeElementParser>,
                   Reference<"provider", faults::ParserServicesProvider>)
QUENLITH_COMPONENT(faults_Silent, faults::Silent, Provides<faults::SnippetParser>)
QUENLITH_COMPONENT(faults_Throws, faults::Throws, Provides<faults::CodeElementParser>)
QUENLITH_COMPONENT(faults_ThrowsNumber, faults::ThrowsNumber, Provides<faults::CodeElementParser>)

using cppmicroservices::service::component::detail::ComponentInstance;

// A component without its DeleteInstance_ function.
extern "C" QUENLITH_BUNDLE_EXPORT ComponentInstance* NewInstance_faults_Half() {
  return nullptr;
}

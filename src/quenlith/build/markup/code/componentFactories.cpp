#include "quenlith/build/markup/code/CodeSnippetParserImpl.hpp"
#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"
#include "quenlith/build/markup/code/TaskSnippetParserImpl.hpp"
#include "quenlith/build/markup/services/ParserServicesProviderImpl.hpp"
#include "quenlith/bundle/component.hpp"

// The components of the bundle, as its manifest lists them.

namespace quenlith::bundle {

using build::markup::SnippetParser;
using build::markup::code::CodeElementParser;
using build::markup::services::ParserServicesProvider;
using shared::appendix::AppendixBuilder;

}  // namespace quenlith::bundle

QUENLITH_COMPONENT(quenlith_build_markup_services_ParserServicesProviderImpl,
                   build::markup::services::ParserServicesProviderImpl,
                   Provides<ParserServicesProvider>);

QUENLITH_COMPONENT(quenlith_build_markup_code_CodeSnippetParserImpl,
                   build::markup::code::CodeSnippetParserImpl, Provides<SnippetParser>,
                   Reference<"parserServicesProvider", ParserServicesProvider>);

QUENLITH_COMPONENT(quenlith_build_markup_code_PlainTextNodeParserImpl,
                   build::markup::code::PlainTextNodeParserImpl, Provides<CodeElementParser>);

QUENLITH_COMPONENT(quenlith_build_markup_code_TaskSnippetParserImpl,
                   build::markup::code::TaskSnippetParserImpl, Provides<SnippetParser>,
                   Reference<"appendixBuilder", AppendixBuilder>,
                   Reference<"parserServicesProvider", ParserServicesProvider>);

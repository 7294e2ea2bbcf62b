// A complete host: starts the parsers, parses four lines with a task, and prints the nodes of each
// line.
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/FrameworkFactory.h"
#include "document/kdzero/TextNode.hpp"
#include "foundation/cppmicroservices/getFramework.hpp"
#include "quenlith/build/markup/SnippetParser.hpp"
#include "quenlith/shared/appendix/MarkerAppendix.hpp"

using cppmicroservices::Framework;
using document::kdzero::Node;
using document::kdzero::TextNode;
using fl::i18n::ustring_to_utf8;
using foundation::cppmicroservices::getFramework;
using foundation::cppmicroservices::setFramework;
using quenlith::build::markup::SnippetParser;
using quenlith::shared::appendix::AppendixBuilder;
using quenlith::shared::appendix::MarkerAppendix;
using Parsers = std::vector<std::shared_ptr<SnippetParser>>;

void require(bool condition, const char* message) {
  if (!condition) throw std::runtime_error(message);
}

// Returns the parsers in the order in which they are asked: the default one, which takes every
// line, is last.
Parsers findParsers(cppmicroservices::BundleContext context) {
  Parsers parsers;
  for (const char* filter : {"(!(priority=default))", "(priority=default)"}) {
    for (const auto& reference : context.GetServiceReferences<SnippetParser>(filter)) {
      parsers.push_back(context.GetService(reference));
    }
  }
  require(!parsers.empty(), "no parser: is the runtime bundle started?");
  require(parsers.size() > 1, "no task parser: is an AppendixBuilder registered?");
  require(getFramework() != nullptr, "call setFramework first");
  return parsers;
}

void print(const Node& node, std::size_t depth) {
  std::cout << std::string(2 * depth, ' ') << ustring_to_utf8(node->getMetaClass().getName());
  const TextNode text = TextNode::castFrom(node);
  if (text) std::cout << ": " << ustring_to_utf8(text->getText());
  std::cout << '\n';
  for (const Node& child : node->getChildren()) print(child, depth + 1);
}

void parse(const Parsers& parsers, const std::vector<fl::i18n::ustring>& lines) {
  for (const auto& parser : parsers) parser->reset();
  const auto document = std::make_shared<document::kdzero::TesseraDocument>();
  quenlith::build::markup::Snippet snippet;
  for (const auto& line : lines) snippet.auxiliaryText += line + u"\n";
  // A new number for each text, so that the task parser need not compare texts.
  static std::uint64_t lastBlockVersion = 0;
  snippet.blockVersion = ++lastBlockVersion;
  for (const auto& line : lines) {
    snippet.text = line;
    for (const auto& parser : parsers) {
      if (!parser->canParse(snippet)) continue;
      snippet.type = parser->parse(document, snippet).type;
      break;
    }
  }
  for (const Node& node : document->getChildren()) print(node, 0);
}

int main() try {
  const auto framework =
      std::make_shared<Framework>(cppmicroservices::FrameworkFactory().NewFramework());
  framework->Start();
  setFramework(framework);
  const auto appendix = std::make_shared<MarkerAppendix>();
  framework->GetBundleContext().RegisterService<AppendixBuilder>(
      std::shared_ptr<AppendixBuilder>(appendix));
  for (const char* file : {RUNTIME_BUNDLE, PARSER_BUNDLE}) {
    for (auto bundle : framework->GetBundleContext().InstallBundles(file)) bundle.Start();
  }

  appendix->replace({quenlith::syntax::Marker(uR"(<@task#sum {"text":"Add up"}>)")});
  parse(findParsers(framework->GetBundleContext()),
        {u"x = 1", u"# <@task#sum>", u"y = x + 1", u"# <@task#sum>"});

  setFramework(nullptr);
  framework->Stop();
  framework->WaitForStop(std::chrono::milliseconds::zero());
} catch (const std::exception& error) {
  std::cerr << "host: " << error.what() << '\n';
  return 1;
}

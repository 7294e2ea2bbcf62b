#include "MarkupBundleFixture.hpp"

#include <cppmicroservices/FrameworkEvent.h>

#include "document/kdzero/TesseraDocument.hpp"
#include "foundation/cppmicroservices/getFramework.hpp"

using cppmicroservices::FrameworkEvent;
using foundation::cppmicroservices::setFramework;
using quenlith::build::markup::Snippet;

void MarkupBundle::SetUp() {
  framework.Start();
  setFramework(std::make_shared<cppmicroservices::Framework>(framework));
  context = framework.GetBundleContext();
  context.AddFrameworkListener([](const FrameworkEvent& event) {
    if (event.GetType() == FrameworkEvent::FRAMEWORK_ERROR ||
        event.GetType() == FrameworkEvent::FRAMEWORK_WARNING) {
      ADD_FAILURE() << event.GetMessage();
    }
  });
  install(SCR_BUNDLE).Start();
  bundle = install(BUNDLE);
  bundle.Start();
}

void MarkupBundle::TearDown() {
  setFramework(nullptr);
  framework.Stop();
  framework.WaitForStop(std::chrono::milliseconds::zero());
}

cppmicroservices::Bundle MarkupBundle::install(const std::string& library) {
  return context.InstallBundles(library).at(0);
}

std::size_t MarkupBundle::parserCount(const std::string& filter) {
  return context.GetServiceReferences<SnippetParser>(filter).size();
}

std::shared_ptr<MarkupBundle::SnippetParser> MarkupBundle::parser(const std::string& filter) {
  return context.GetService(context.GetServiceReferences<SnippetParser>(filter).at(0));
}

MarkupBundle::AppendixRegistration MarkupBundle::registerAppendix() {
  return context.RegisterService<AppendixBuilder>(appendix);
}

std::size_t MarkupBundle::parseLine(SnippetParser& with, const fl::i18n::ustring& text) {
  const auto document = std::make_shared<document::kdzero::TesseraDocument>();
  with.parse(document, Snippet{.text = text, .type = {}, .auxiliaryText = text});
  return document->getChildren().size();
}

#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkFactory.h>

#include "quenlith/build/markup/SnippetParser.hpp"
#include "quenlith/shared/appendix/AppendixBuilder.hpp"

class EmptyAppendix : public quenlith::shared::appendix::AppendixBuilder {
 public:
  void addEntry(const quenlith::syntax::Marker&) override {}
  fl::i18n::ustring build() const override { return u""; }
  quenlith::shared::appendix::AppendixEntry findEntry(
      const quenlith::syntax::Marker&) const override {
    return {};
  }
};

/// Starts a framework with the parsers' bundle for each test. A warning or an error of the
/// framework fails the test.
class MarkupBundle : public testing::Test {
 protected:
  using SnippetParser = quenlith::build::markup::SnippetParser;
  using AppendixBuilder = quenlith::shared::appendix::AppendixBuilder;
  using AppendixRegistration = cppmicroservices::ServiceRegistration<AppendixBuilder>;

  static constexpr const char* kDefault = "(priority=default)";
  static constexpr const char* kTask = "(test_id=TaskSnippetParserImpl)";

  void SetUp() override;
  void TearDown() override;

  /// Installs `library` and returns its only bundle, not started.
  cppmicroservices::Bundle install(const std::string& library);

  std::size_t parserCount(const std::string& filter = "");
  std::shared_ptr<SnippetParser> parser(const std::string& filter);
  AppendixRegistration registerAppendix();

  /// Parses one line into a new document and returns how many nodes were added.
  static std::size_t parseLine(SnippetParser& with, const fl::i18n::ustring& text);

  cppmicroservices::Framework framework = cppmicroservices::FrameworkFactory().NewFramework();
  cppmicroservices::BundleContext context;
  cppmicroservices::Bundle bundle;
  std::shared_ptr<EmptyAppendix> appendix = std::make_shared<EmptyAppendix>();
};

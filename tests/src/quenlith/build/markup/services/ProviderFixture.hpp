#pragma once

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkEvent.h>
#include <cppmicroservices/FrameworkFactory.h>
#include <cppmicroservices/ServiceFactory.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "fakes/ParserFakes.hpp"
#include "foundation/cppmicroservices/getFramework.hpp"
#include "quenlith/build/markup/services/ParserServicesProviderImpl.hpp"

namespace quenlith::test {

using build::markup::code::CodeElementParser;
using build::markup::contributordata::LineContributorDataParser;
using cppmicroservices::BundleContext;
using cppmicroservices::Framework;
using cppmicroservices::ServiceProperties;
using foundation::cppmicroservices::setFramework;

/// Makes its services by calling a function, which may return null.
class Factory final : public cppmicroservices::ServiceFactory {
 public:
  using Make = std::function<cppmicroservices::InterfaceMapConstPtr()>;
  explicit Factory(Make makeService) : make(std::move(makeService)) {}
  cppmicroservices::InterfaceMapConstPtr GetService(
      const cppmicroservices::Bundle&, const cppmicroservices::ServiceRegistrationBase&) override {
    return make();
  }
  void UngetService(const cppmicroservices::Bundle&,
                    const cppmicroservices::ServiceRegistrationBase&,
                    const cppmicroservices::InterfaceMapConstPtr&) override {}

 private:
  Make make;
};

inline std::shared_ptr<CodeElementParser> makeElementParser() {
  return std::make_shared<FakeElementParser>(u"", u"");
}

inline std::shared_ptr<LineContributorDataParser> makeContributor() {
  return std::make_shared<FakeContributor>(u"", u"");
}

inline ServiceProperties ranked(int ranking) {
  return {{std::string("service.ranking"), ranking}};
}

inline ServiceProperties prioritised(const std::string& priority) {
  return {{std::string("priority"), priority}};
}

/// Starts a framework for a provider to look in.
class ProviderFixture : public testing::Test {
 protected:
  ProviderFixture() {
    framework->Start();
    setFramework(framework);
  }
  ~ProviderFixture() override {
    setFramework(nullptr);
    stop();
  }

  void stop() {
    framework->Stop();
    framework->WaitForStop(std::chrono::milliseconds::zero());
  }
  BundleContext context() { return framework->GetBundleContext(); }

  std::shared_ptr<CodeElementParser> addElementParser(const ServiceProperties& properties = {}) {
    auto parser = makeElementParser();
    (void)context().RegisterService<CodeElementParser>(parser, properties);
    return parser;
  }
  std::shared_ptr<LineContributorDataParser> addContributor(
      const ServiceProperties& properties = {}) {
    auto parser = makeContributor();
    (void)context().RegisterService<LineContributorDataParser>(parser, properties);
    return parser;
  }
  template <class Service>
  void addFactory(Factory::Make make, const ServiceProperties& properties = {}) {
    (void)context().RegisterService<Service>(
        cppmicroservices::ToFactory(std::make_shared<Factory>(std::move(make))), properties);
  }

  std::shared_ptr<Framework> framework =
      std::make_shared<Framework>(cppmicroservices::FrameworkFactory().NewFramework());
  build::markup::services::ParserServicesProviderImpl provider;
};

}  // namespace quenlith::test

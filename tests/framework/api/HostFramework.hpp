#pragma once

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkEvent.h>
#include <cppmicroservices/FrameworkFactory.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace framework_api {

struct Greeter {
  virtual ~Greeter() = default;
  virtual std::string greet() const = 0;
};

struct Counter {
  virtual ~Counter() = default;
  virtual int count() const { return 1; }
};

struct Hello : Greeter {
  explicit Hello(std::string greeting = "hello") : text(std::move(greeting)) {}
  std::string greet() const override { return text; }
  std::string text;
};

/// A service under two interfaces.
struct CountingHello : Hello, Counter {};

/// A framework that was started, and its context.
class HostFramework : public testing::Test {
 protected:
  HostFramework() : framework(cppmicroservices::FrameworkFactory().NewFramework()) {
    framework.Start();
    context = framework.GetBundleContext();
  }

  void stop() {
    framework.Stop();
    framework.WaitForStop(std::chrono::milliseconds::zero());
  }

  cppmicroservices::Framework framework;
  cppmicroservices::BundleContext context;
};

}  // namespace framework_api

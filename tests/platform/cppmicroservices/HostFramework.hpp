#pragma once

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkEvent.h>
#include <cppmicroservices/FrameworkFactory.h>
#include <gtest/gtest.h>

#include <chrono>
#include <mutex>
#include <string>
#include <vector>

namespace embedded_framework {

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

/// A started framework, its context, and the errors that it reported.
class HostFramework : public testing::Test {
 protected:
  HostFramework() { start(); }

  void start() {
    framework.Start();
    context = framework.GetBundleContext();
    context.AddFrameworkListener([this](const cppmicroservices::FrameworkEvent& event) {
      const std::lock_guard lock(mutex);
      errors.push_back(event.GetMessage());
    });
  }

  void stop() {
    framework.Stop();
    framework.WaitForStop(std::chrono::milliseconds::zero());
  }

  cppmicroservices::Framework framework = cppmicroservices::FrameworkFactory().NewFramework();
  cppmicroservices::BundleContext context;
  std::mutex mutex;
  std::vector<std::string> errors;
};

}  // namespace embedded_framework

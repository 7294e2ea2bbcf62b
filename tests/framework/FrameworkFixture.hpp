#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkEvent.h>
#include <cppmicroservices/FrameworkFactory.h>

#include "parts.hpp"

/// Stores notes in order. Thread-safe.
class NoteBook : public demo::Ledger {
 public:
  void note(const std::string& entry) override;
  std::vector<std::string> take();

 private:
  std::mutex mutex;
  std::vector<std::string> entries;
};

/// Starts a new framework for each test and stops it afterwards.
class FrameworkFixture : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// Installs a test bundle and returns it, not started.
  cppmicroservices::Bundle install(const std::string& library);
  /// Installs and starts the Declarative Services runtime.
  cppmicroservices::Bundle startRuntime();
  /// Returns the messages of the framework's warnings and errors since the last call.
  std::vector<std::string> takeProblems();

  static std::string pathOf(const std::string& library);

  cppmicroservices::Framework framework = cppmicroservices::FrameworkFactory().NewFramework();
  cppmicroservices::BundleContext context;

 private:
  std::mutex mutex;
  std::vector<std::string> problems;
};

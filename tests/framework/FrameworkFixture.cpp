#include "FrameworkFixture.hpp"

#include <utility>

using cppmicroservices::Bundle;
using cppmicroservices::FrameworkEvent;

void NoteBook::note(const std::string& entry) {
  const std::lock_guard lock(mutex);
  entries.push_back(entry);
}

std::vector<std::string> NoteBook::take() {
  const std::lock_guard lock(mutex);
  return std::exchange(entries, {});
}

void FrameworkFixture::SetUp() {
  framework.Start();
  context = framework.GetBundleContext();
  context.AddFrameworkListener([this](const FrameworkEvent& event) {
    if (event.GetType() == FrameworkEvent::FRAMEWORK_ERROR ||
        event.GetType() == FrameworkEvent::FRAMEWORK_WARNING) {
      const std::lock_guard lock(mutex);
      problems.push_back(event.GetMessage());
    }
  });
}

void FrameworkFixture::TearDown() {
  framework.Stop();
  framework.WaitForStop(std::chrono::milliseconds::zero());
}

std::string FrameworkFixture::pathOf(const std::string& library) {
  return std::string(BUNDLE_FOLDER) + "/" + library + ".so";
}

Bundle FrameworkFixture::install(const std::string& library) {
  return context.InstallBundles(pathOf(library)).at(0);
}

Bundle FrameworkFixture::startRuntime() {
  Bundle runtime = context.InstallBundles(SCR_BUNDLE).at(0);
  runtime.Start();
  return runtime;
}

std::vector<std::string> FrameworkFixture::takeProblems() {
  const std::lock_guard lock(mutex);
  return std::exchange(problems, {});
}

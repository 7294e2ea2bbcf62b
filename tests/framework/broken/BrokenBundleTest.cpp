#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <exception>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "../FrameworkFixture.hpp"
#include "BundleFile.hpp"
#include "brokenBundles.hpp"

using cppmicroservices::Bundle;
using testing::ElementsAre;

namespace {

std::string bytesOf(const BrokenBundle& row) {
  std::string library = readBytes(BASE_LIBRARY);
  const auto withArchive = [&](const std::string& start, const std::string& name) {
    return start + makeArchive({{name, row.manifest}}, start.size());
  };
  std::string whole = withArchive(library, "broken/manifest.json");
  switch (row.make) {
    case Make::kManifestOnly:
      return row.manifest;
    case Make::kNoArchive:
      return library;
    case Make::kCutArchive:
      return whole.substr(0, whole.size() - 15);
    case Make::kWrongBytes: {
      std::string wrong = whole;
      wrong[wrong.find(row.manifest) + 10] ^= 1;
      return wrong;
    }
    case Make::kOtherFile:
      return withArchive(library, "broken/other.json");
    case Make::kEmptyArchive:
      return library + makeArchive({}, library.size());
    case Make::kNoFolder:
      return withArchive(library, "manifest.json");
    case Make::kArchiveOnly:
      return withArchive("", "broken/manifest.json");
    case Make::kOtherMachine: {
      // The ELF class in the fifth byte is 1 for 32 bits.
      std::string other = whole;
      other[4] = 1;
      return other;
    }
    default:
      return whole;
  }
}

void replaceAll(std::string& text, const std::string& what, const std::string& by) {
  for (auto at = text.find(what); at != std::string::npos; at = text.find(what)) {
    text.replace(at, what.size(), by);
  }
}

std::string makeFile(const BrokenBundle& row) {
  std::string path = std::string(WORK_FOLDER) + "/" + row.name + ".so";
  std::filesystem::create_directories(WORK_FOLDER);
  std::filesystem::remove_all(path);
  if (row.make == Make::kFolder) {
    std::filesystem::create_directory(path);
  } else if (row.make != Make::kNoFile) {
    writeBytes(path, bytesOf(row));
  }
  return path;
}

class Broken : public FrameworkFixture, public testing::WithParamInterface<BrokenBundle> {
 protected:
  void SetUp() override {
    FrameworkFixture::SetUp();
    startRuntime();
    Bundle good = install("parts");
    good.Start();
  }

  // Installs and starts the bundle and gets its services; returns all messages.
  std::vector<std::string> use(const std::string& path) {
    std::vector<std::string> messages;
    try {
      for (Bundle bundle : context.InstallBundles(path)) bundle.Start();
      for (const auto& reference : context.GetServiceReferences<demo::Broken>()) {
        if (reference.GetBundle().GetLocation() == path) context.GetService(reference);
      }
    } catch (const std::exception& problem) {
      messages.emplace_back(problem.what());
    }
    for (const std::string& problem : takeProblems()) messages.push_back(problem);
    for (std::string& message : messages) {
      replaceAll(message, path, "FILE");
      replaceAll(message, pathOf("parts"), "OTHER");
    }
    return messages;
  }

  void expectTheRestWorks() {
    const auto word = context.GetServiceReference<demo::Word>();
    ASSERT_TRUE(word);
    EXPECT_EQ(context.GetService(word)->text(), "plain");
  }
};

TEST_P(Broken, IsReportedAndDoesNotAffectOthers) {
  const std::vector<std::string> messages = use(makeFile(GetParam()));
  if (EMBEDDED_FRAMEWORK) {
    EXPECT_THAT(messages, ElementsAre(GetParam().message));
  }
  expectTheRestWorks();
}

std::vector<BrokenBundle> usableRows() {
  std::vector<BrokenBundle> usable = brokenBundles();
  // CppMicroServices 3.8.12 calls through the null instance.
  if (!EMBEDDED_FRAMEWORK) {
    std::erase_if(usable, [](const BrokenBundle& row) {
      return row.name == std::string("FactoryReturnsNull");
    });
  }
  return usable;
}

INSTANTIATE_TEST_SUITE_P(Bundle, Broken, testing::ValuesIn(usableRows()),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace

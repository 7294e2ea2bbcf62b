#include <sys/resource.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <optional>
#include <stdexcept>

#include "framework/broken/BundleFile.hpp"
#include "platform/cppmicroservices/HostFramework.hpp"
#include "support/FailingAllocations.hpp"

namespace embedded_framework {
namespace {

using cppmicroservices::Any;
using cppmicroservices::any_cast;
using cppmicroservices::AnyMap;
using cppmicroservices::Bundle;
using quenlith::test::AllocationHook;
using namespace std::string_literals;

enum class Offsets { kFromFile, kFromArchive };

class Manifests : public HostFramework {
 protected:
  // Writes a file that ends with an archive of `files`. It can be installed, but not started.
  std::string write(const std::vector<std::pair<std::string, std::string>>& files,
                    Offsets offsets = Offsets::kFromFile, const std::string& name = "made.so") {
    const std::string start = "no library";
    path = std::string(WORK_FOLDER) + "/" + name;
    std::filesystem::create_directories(WORK_FOLDER);
    writeBytes(path, start + makeArchive(files, offsets == Offsets::kFromFile ? start.size() : 0));
    return path;
  }

  static std::vector<std::string> namesOf(const std::vector<Bundle>& bundles) {
    std::vector<std::string> names;
    for (const Bundle& bundle : bundles) names.push_back(bundle.GetSymbolicName());
    return names;
  }

  AnyMap headersOf(const std::string& members) {
    write({{"made/manifest.json", R"({"bundle.symbolic_name":"made")" + members + "}"}});
    Bundle bundle = context.InstallBundles(path).at(0);
    AnyMap headers = bundle.GetHeaders();
    bundle.Uninstall();
    return headers;
  }

  std::string refusalOf(const std::string& members) {
    try {
      headersOf(members);
      return "";
    } catch (const std::runtime_error& error) {
      return error.what();
    }
  }

  // Returns why the file at `path` is refused; uninstalls it if it is not.
  std::string refusal() {
    try {
      context.InstallBundles(path).at(0).Uninstall();
      return "";
    } catch (const std::runtime_error& error) {
      return error.what();
    }
  }

  std::string path;
};

TEST_F(Manifests, ValuesHaveTheDocumentedTypes) {
  const AnyMap headers = headersOf(
      R"(,"int":5,"negative":-3,"largest":2147483647,"large":2147483648,"small":-2147483649,)"
      R"("real":1.5,"yes":true,"no":false,"none":null,"text":"x",)"
      R"("list":[1,[2],{"a":3}],"map":{"A":{"b":4}})");
  EXPECT_EQ(headers.at("INT"), Any(5));
  EXPECT_EQ(headers.at("negative"), Any(-3));
  EXPECT_EQ(headers.at("largest"), Any(2147483647));
  EXPECT_EQ(headers.at("large"), Any(2147483648.0));
  EXPECT_EQ(headers.at("small"), Any(-2147483649.0));
  EXPECT_EQ(headers.at("real"), Any(1.5));
  EXPECT_EQ(headers.at("yes"), Any(true));
  EXPECT_EQ(headers.at("no"), Any(false));
  EXPECT_TRUE(headers.at("none").Empty());
  EXPECT_EQ(headers.at("text"), Any("x"s));
  EXPECT_EQ(headers.AtCompoundKey("list.0"), Any(1));
  EXPECT_EQ(headers.AtCompoundKey("list.1.0"), Any(2));
  EXPECT_EQ(headers.AtCompoundKey("list.2.a"), Any(3));
  EXPECT_EQ(headers.AtCompoundKey("map.a.B"), Any(4));
}

TEST_F(Manifests, VersionsAreOneToThreeNumbersAndAQualifier) {
  for (const char* version : {"1", "1.2", "1.2.3", "10.20.30.a-B_9"}) {
    EXPECT_EQ(refusalOf(R"(,"bundle.version":")"s + version + "\""), "") << version;
  }
  for (const char* version :
       {"", "x", "1.", "1x2", "1.x", ".1", "1.2.", "1.2.3.", "1.2.3.4.5", "1.2.3.a b"}) {
    EXPECT_EQ(refusalOf(R"(,"bundle.version":")"s + version + "\""),
              path +
                  ": made/manifest.json cannot be used: \"bundle.version\" is not a text such as "
                  "\"1.0.2\"; correct the manifest and append the archive again")
        << version;
  }
  EXPECT_NE(refusalOf(R"(,"bundle.version":1.2)"), "");
}

TEST_F(Manifests, NamesAreIdentifiers) {
  const auto install = [this](const std::string& name) {
    write({{"made/manifest.json", R"({"bundle.symbolic_name":")" + name + "\"}"}});
    return context.InstallBundles(path).at(0);
  };
  for (const char* name : {"a", "Z_9", "_", "a0z"}) {
    Bundle bundle = install(name);
    EXPECT_EQ(bundle.GetSymbolicName(), name);
    bundle.Uninstall();
  }
  for (const char* name : {"", "9a", "a-b", "a.b", "a b", "a{", "a@", "a[", "a`", "a/", "a:"}) {
    EXPECT_THROW(install(name), std::runtime_error) << name;
  }
}

TEST_F(Manifests, FileThatIsNotALibraryDoesNotStart) {
  write({{"made/manifest.json", R"({"bundle.symbolic_name":"made"})"}});
  Bundle bundle = context.InstallBundles(path).at(0);
  EXPECT_THROW(bundle.Start(), std::runtime_error);
  EXPECT_EQ(bundle.GetState(), Bundle::STATE_RESOLVED);
}

TEST_F(Manifests, KeysThatDifferInCaseOnlyAreRefused) {
  EXPECT_NE(refusalOf(R"(,"map":{"a":1,"A":2})").find("the key \"A\" occurs twice"),
            std::string::npos);
  EXPECT_EQ(refusalOf(R"(,"map":{"a":1},"other":{"a":2})"), "");
}

TEST_F(Manifests, DeepValuesAreRefused) {
  const auto nested = [](std::size_t depth) {
    return ",\"deep\":" + std::string(depth, '[') + std::string(depth, ']');
  };
  EXPECT_EQ(refusalOf(nested(99)), "");
  EXPECT_NE(refusalOf(nested(100)).find("nested too deeply"), std::string::npos);
  EXPECT_NE(refusalOf(nested(1000000)).find("nested too deeply"), std::string::npos);
}

TEST_F(Manifests, RootIsAnObject) {
  for (const char* text : {"[]", "5", "\"a\"", "null", "true", "1.5", "-1"}) {
    write({{"made/manifest.json", text}});
    try {
      context.InstallBundles(path);
      ADD_FAILURE() << text;
    } catch (const std::runtime_error& error) {
      EXPECT_NE(std::string(error.what()).find("it is not an object"), std::string::npos) << text;
    }
  }
}

TEST_F(Manifests, OffsetsCountFromTheFileOrTheArchive) {
  for (const Offsets offsets : {Offsets::kFromFile, Offsets::kFromArchive}) {
    write({{"made/manifest.json", R"({"bundle.symbolic_name":"made"})"}}, offsets);
    Bundle bundle = context.InstallBundles(path).at(0);
    EXPECT_EQ(bundle.GetSymbolicName(), "made");
    bundle.Uninstall();
  }
}

TEST_F(Manifests, ArchiveWithoutItsBeginningIsRefused) {
  write({{"made/manifest.json", R"({"bundle.symbolic_name":"made"})"}});
  writeBytes(path, readBytes(path).substr(30));
  EXPECT_THROW(
      {
        try {
          context.InstallBundles(path);
        } catch (const std::runtime_error& error) {
          EXPECT_NE(std::string(error.what()).find("has lost its beginning"), std::string::npos);
          throw;
        }
      },
      std::runtime_error);
}

TEST_F(Manifests, ArchiveWithADamagedDirectoryIsRefused) {
  write({{"made/manifest.json", R"({"bundle.symbolic_name":"made"})"}});
  std::string bytes = readBytes(path);
  bytes[bytes.find("PK\1\2")] = 'X';
  writeBytes(path, bytes);
  EXPECT_THROW(context.InstallBundles(path), std::runtime_error);
}

TEST_F(Manifests, ArchiveWithADamagedEntryIsRefused) {
  write({{"made/manifest.json", R"({"bundle.symbolic_name":"made"})"}});
  std::string bytes = readBytes(path);
  // The compression method of the entry; 99 is not supported.
  bytes[bytes.find("PK\1\2") + 10] = 99;
  writeBytes(path, bytes);
  EXPECT_THROW(context.InstallBundles(path), std::runtime_error);
}

TEST_F(Manifests, DamageOfAnEntryIsNamed) {
  // 7 begins a block of a type that the compression method "deflated" does not have.
  write({{"made/manifest.json", "\7 is not compressed"}});
  const std::string sound = readBytes(path);
  const std::size_t local = sound.find("PK\3\4");
  const std::size_t central = sound.find("PK\1\2");
  const auto refusalOfDamage = [&](const std::vector<std::pair<std::size_t, char>>& changes) {
    std::string bytes = sound;
    for (const auto& [place, byte] : changes) bytes[place] = byte;
    writeBytes(path, bytes);
    return refusal();
  };
  const std::string start = path + ": the zip archive at the end of the file is damaged (";
  const std::string end =
      "); append a zip archive that contains <symbolic name>/manifest.json to the library, after "
      "it was stripped";
  // The method becomes "deflated".
  EXPECT_EQ(refusalOfDamage({{local + 8, 8}, {central + 10, 8}}),
            start + "an entry cannot be decompressed" + end);
  // Both sizes become larger than the file, by 65,536 bytes.
  EXPECT_EQ(
      refusalOfDamage({{local + 20, 1}, {local + 24, 1}, {central + 22, 1}, {central + 26, 1}}),
      start + "it cannot be read" + end);
}

// No further file can be opened while it lives.
class NoMoreFiles {
 public:
  explicit NoMoreFiles(int firstUnused) {
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit none{static_cast<rlim_t>(firstUnused), before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
  }
  ~NoMoreFiles() { setrlimit(RLIMIT_NOFILE, &before); }
  NoMoreFiles(const NoMoreFiles&) = delete;
  NoMoreFiles& operator=(const NoMoreFiles&) = delete;

 private:
  rlimit before{};
};

TEST_F(Manifests, LackOfOpenFilesIsReportedWheneverItBegins) {
  write({{"made/manifest.json", R"({"bundle.symbolic_name":"made"})"}});
  const int firstUnused = dup(0);
  ASSERT_GE(firstUnused, 0);
  close(firstUnused);
  bool isLacking = true;
  int refusals = 0;
  for (std::size_t number = 0; isLacking; ++number) {
    std::optional<NoMoreFiles> lack;
    const AllocationHook hook(number, [&] { lack.emplace(firstUnused); });
    const std::string found = refusal();
    lack.reset();
    isLacking = hook.hasCalled();
    if (found.empty()) continue;
    ++refusals;
    ASSERT_EQ(found, path +
                         ": the file cannot be read (Too many open files); close files, or raise "
                         "the limit of open files")
        << number;
  }
  EXPECT_GT(refusals, 0);
}

TEST_F(Manifests, LibraryMayContainSeveralBundles) {
  write({{"one/manifest.json", R"({"bundle.symbolic_name":"one"})"},
         {"one/deeper/manifest.json", "no manifest of a bundle"},
         {"two/manifest.json", R"({"bundle.symbolic_name":"two"})"}});
  const std::vector<Bundle> bundles = context.InstallBundles(path);
  ASSERT_EQ(bundles.size(), 2U);
  EXPECT_EQ(bundles[0].GetSymbolicName(), "one");
  EXPECT_EQ(bundles[1].GetSymbolicName(), "two");
  EXPECT_EQ(context.GetBundles(path), bundles);
  EXPECT_EQ(context.InstallBundles(path), bundles);
  EXPECT_EQ(context.GetBundles().size(), 3U);
}

TEST_F(Manifests, BundlesOfALibraryAreInstalledInTheOrderOfTheirPaths) {
  write({{"zeta/manifest.json", R"({"bundle.symbolic_name":"zeta"})"},
         {"alpha/manifest.json", R"({"bundle.symbolic_name":"alpha"})"},
         {"mid/manifest.json", R"({"bundle.symbolic_name":"mid"})"}});
  EXPECT_EQ(namesOf(context.InstallBundles(path)),
            (std::vector<std::string>{"alpha", "mid", "zeta"}));
}

TEST_F(Manifests, UninstalledBundleOfALibraryIsInstalledAgain) {
  write({{"one/manifest.json", R"({"bundle.symbolic_name":"one"})"},
         {"two/manifest.json", R"({"bundle.symbolic_name":"two"})"}});
  std::vector<Bundle> bundles = context.InstallBundles(path);
  bundles[0].Uninstall();
  EXPECT_EQ(context.GetBundles(path), std::vector<Bundle>{bundles[1]});
  const std::vector<Bundle> again = context.InstallBundles(path);
  EXPECT_EQ(namesOf(again), (std::vector<std::string>{"two", "one"}));
  EXPECT_EQ(again[0], bundles[1]);
  EXPECT_GT(again[1].GetBundleId(), bundles[1].GetBundleId());
  // A library whose bundles are all installed is not read again.
  std::filesystem::remove(path);
  EXPECT_EQ(context.InstallBundles(path), again);
}

TEST_F(Manifests, NameAndVersionTogetherAreUnique) {
  const auto install = [this](const std::string& name, const std::string& version) {
    write({{"made/manifest.json", R"({"bundle.symbolic_name":"made")" + version + "}"}},
          Offsets::kFromFile, name);
    return context.InstallBundles(path).at(0);
  };
  const Bundle none = install("none.so", "");
  const Bundle one = install("one.so", R"(,"bundle.version":"1.0.0")");
  const Bundle two = install("two.so", R"(,"bundle.version":"2.0.0")");
  EXPECT_EQ(context.GetBundles().size(), 4U);
  for (const char* version : {"", R"(,"bundle.version":"0.0")", R"(,"bundle.version":"1.0")"}) {
    EXPECT_THROW(install("again.so", version), std::runtime_error) << version;
  }
  EXPECT_EQ(context.GetBundles().size(), 4U);
}

TEST_F(Manifests, LibraryIsInstalledAsAWholeOrNotAtAll) {
  write({{"one/manifest.json", R"({"bundle.symbolic_name":"one"})"},
         {"two/manifest.json", R"({"bundle.symbolic_name":2})"}});
  EXPECT_THROW(context.InstallBundles(path), std::runtime_error);
  EXPECT_EQ(context.GetBundles().size(), 1U);
  write({{"one/manifest.json", R"({"bundle.symbolic_name":"one"})"},
         {"two/manifest.json", R"({"bundle.symbolic_name":"one"})"}});
  EXPECT_THROW(context.InstallBundles(path), std::runtime_error);
  EXPECT_EQ(context.GetBundles().size(), 1U);
}

TEST_F(Manifests, RelativePathsStartAtTheWorkingFolder) {
  write({{"made/manifest.json", R"({"bundle.symbolic_name":"made"})"}});
  const std::string relative = std::filesystem::relative(path).string();
  const Bundle bundle = context.InstallBundles(relative).at(0);
  EXPECT_TRUE(std::filesystem::path(bundle.GetLocation()).is_absolute());
  EXPECT_EQ(context.GetBundles(relative), std::vector<Bundle>{bundle});
}

}  // namespace
}  // namespace embedded_framework

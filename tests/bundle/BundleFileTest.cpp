#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <link.h>
#include <zip.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/servicecomponent/detail/ComponentInstance.hpp>

#include "quenlith/build/markup/SnippetParser.hpp"
#include "quenlith/build/markup/services/ParserServicesProvider.hpp"
#include "quenlith/shared/appendix/MarkerAppendix.hpp"
#include "support/FailingAllocations.hpp"

namespace {

using cppmicroservices::service::component::detail::ComponentInstance;
using quenlith::test::allocationCount;
using quenlith::test::FailingAllocations;
using quenlith::test::liveAllocations;

constexpr const char* kSymbolicName = "com_velquorin_quenlith_build_markup_code";
constexpr std::array kComponents = {
    "quenlith_build_markup_services_ParserServicesProviderImpl",
    "quenlith_build_markup_code_CodeSnippetParserImpl",
    "quenlith_build_markup_code_PlainTextNodeParserImpl",
    "quenlith_build_markup_code_TaskSnippetParserImpl",
};

// Returns the names that nm lists for the bundle with `options`.
std::vector<std::string> symbols(const std::string& options) {
  const std::string command = "'" NM "' --format=posix " + options + " '" BUNDLE "'";
  const std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), pclose);
  std::string text;
  std::array<char, 4096> part{};
  while (const std::size_t size = fread(part.data(), 1, part.size(), output.get())) {
    text.append(part.data(), size);
  }
  std::vector<std::string> names;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);)
    names.push_back(line.substr(0, line.find(' ')));
  return names;
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

#if BUNDLE_IS_STRIPPED

// Returns the number of functions that the loader runs when it loads the bundle: one per source
// file with an object that needs dynamic initialization.
std::size_t functionsRunWhenLoaded() {
  const std::string file = readFile(BUNDLE);
  ElfW(Ehdr) header{};
  std::memcpy(&header, file.data(), sizeof(header));
  std::size_t count = 0;
  for (std::size_t index = 0; index < header.e_shnum; ++index) {
    ElfW(Shdr) section{};
    std::memcpy(&section, file.data() + header.e_shoff + index * sizeof(section), sizeof(section));
    if (section.sh_type == SHT_INIT_ARRAY) count += section.sh_size / sizeof(void*);
  }
  return count;
}

#else

// Returns whether a symbol belongs to an object that is constructed when the library is loaded or
// when it is first used. The framework's headers keep each interface identifier in such an object.
bool makesAnObject(const std::string& name) {
  const bool ofFramework = name.find("us_service_interface_iid") != std::string::npos;
  // Symbols of the address sanitizer and of the coverage runtime.
  const bool ofCompiler = name.starts_with("_GLOBAL__sub_I_00099_") ||
                          name == "_GLOBAL__sub_I_InstrProfilingRuntime.cpp";
  return (name.starts_with("_GLOBAL__") && !ofCompiler) ||
         (name.starts_with("_ZGV") && !ofFramework);
}

#endif

// Returns `text` without spaces and line feeds; no string in the manifest contains one.
std::string withoutBlanks(std::string text) {
  std::erase_if(text, [](char unit) { return unit == ' ' || unit == '\n'; });
  return text;
}

class Factories : public testing::Test {
 protected:
  template <class Function>
  Function symbol(const std::string& name) {
    return reinterpret_cast<Function>(dlsym(library, name.c_str()));
  }
  ComponentInstance* (*creator(const std::string& component))() {
    return symbol<ComponentInstance* (*)()>("NewInstance_" + component);
  }
  void (*remover(const std::string& component))(ComponentInstance*) {
    return symbol<void (*)(ComponentInstance*)>("DeleteInstance_" + component);
  }

  void* library = dlopen(BUNDLE, RTLD_NOW | RTLD_LOCAL);
};

TEST(BundleFile, ExportsNineFunctionsAndNothingElse) {
  std::vector<std::string> expected{std::string("_us_set_bundle_context_instance_") +
                                    kSymbolicName};
  for (const std::string component : kComponents) {
    expected.push_back("NewInstance_" + component);
    expected.push_back("DeleteInstance_" + component);
  }
  EXPECT_THAT(symbols("--dynamic --defined-only"), testing::UnorderedElementsAreArray(expected));
}

#if BUNDLE_IS_STRIPPED

TEST(BundleFile, RunsNoConstructorWhenLoaded) {
  // The one function is the C runtime's.
  EXPECT_EQ(functionsRunWhenLoaded(), 1U);
}

#else

TEST(BundleFile, HasNoDynamicallyInitializedObject) {
  const std::vector<std::string> names = symbols("");
  // The only mutable object of the bundle: if it is missing, the symbol table is not complete.
  EXPECT_EQ(std::count_if(names.begin(), names.end(),
                          [](const std::string& name) {
                            return name.ends_with("_us_bundle_context_instance_" +
                                                  std::string(kSymbolicName));
                          }),
            1);
  std::vector<std::string> made;
  std::copy_if(names.begin(), names.end(), std::back_inserter(made), makesAnObject);
  EXPECT_EQ(made, std::vector<std::string>());
}

#endif

TEST(BundleFile, ManifestHasItsKeysInOrder) {
  EXPECT_EQ(
      withoutBlanks(readFile(MANIFEST)),
      R"({"bundle.activator":false,"bundle.symbolic_name":"com_velquorin_quenlith_build_markup_code",)"
      R"("bundle.vendor":"Velquorin","zq":{"clientdir":"src/quenlith/build/markup/code",)"
      R"("component":{"attributes":"released","name":"quenlith/build/markup/code","type":"software"},)"
      R"("installpath":"bin/win64/quenlith_support/quenlith/build/markup/code/)"
      R"(libzqquenlith_build_markup_code.dll","module":{"name":"libzqquenlith_build_markup_code"}},)"
      R"("purpose":"parse","scr":{"version":1,"components":[{"implementation-class":)"
      R"("quenlith::build::markup::services::ParserServicesProviderImpl","service":{"interfaces":)"
      R"(["quenlith::build::markup::services::ParserServicesProvider"]}},{"implementation-class":)"
      R"("quenlith::build::markup::code::CodeSnippetParserImpl","service":{"interfaces":)"
      R"(["quenlith::build::markup::SnippetParser"]},"properties":{"priority":"default",)"
      R"("test_id":"CodeSnippetParserImpl"},"inject-references":true,"references":[{"name":)"
      R"("parserServicesProvider","interface":)"
      R"("quenlith::build::markup::services::ParserServicesProvider"}]},{"implementation-class":)"
      R"("quenlith::build::markup::code::PlainTextNodeParserImpl","service":{"interfaces":)"
      R"(["quenlith::build::markup::code::CodeElementParser"]},"properties":{"priority":"default"}},)"
      R"({"implementation-class":"quenlith::build::markup::code::TaskSnippetParserImpl","service":)"
      R"({"interfaces":["quenlith::build::markup::SnippetParser"]},"properties":{"test_id":)"
      R"("TaskSnippetParserImpl"},"inject-references":true,"references":[{"name":"appendixBuilder",)"
      R"("interface":"quenlith::shared::appendix::AppendixBuilder"},{"name":)"
      R"("parserServicesProvider","interface":)"
      R"("quenlith::build::markup::services::ParserServicesProvider"}]}]}})");
}

TEST(BundleFile, ArchiveAfterTheLibraryContainsTheManifest) {
  int error = 0;
  const std::unique_ptr<zip_t, void (*)(zip_t*)> archive(zip_open(BUNDLE, ZIP_RDONLY, &error),
                                                         zip_discard);
  ASSERT_NE(archive, nullptr) << "libzip error " << error;
  const std::string name = std::string(kSymbolicName) + "/manifest.json";
  const std::unique_ptr<zip_file_t, int (*)(zip_file_t*)> file(
      zip_fopen(archive.get(), name.c_str(), 0), zip_fclose);
  ASSERT_NE(file, nullptr);
  const std::string expected = readFile(MANIFEST);
  std::string text(expected.size() + 1, '\0');
  text.resize(static_cast<std::size_t>(zip_fread(file.get(), text.data(), text.size())));
  EXPECT_EQ(text, expected);
}

TEST(BundleFile, ResourceScriptNamesTypeNameAndLanguage) {
  EXPECT_EQ(readFile(RESOURCE_SCRIPT_TEST), "LANGUAGE 9, 1\nUS_RESOURCES 300 \"resources.zip\"\n");
}

TEST_F(Factories, RemovingNullDoesNothing) {
  ASSERT_NE(library, nullptr) << dlerror();
  for (const std::string component : kComponents) remover(component)(nullptr);
}

TEST_F(Factories, CreatesAnInstanceOfEachComponent) {
  ASSERT_NE(library, nullptr) << dlerror();
  for (const std::string component : kComponents) {
    ComponentInstance* const instance = creator(component)();
    EXPECT_NE(instance, nullptr) << component;
    remover(component)(instance);
  }
}

TEST_F(Factories, ReturnsNullWhenAnyAllocationFails) {
  ASSERT_NE(library, nullptr) << dlerror();
  for (const std::string component : kComponents) {
    const auto create = creator(component);
    std::size_t failures = 0;
    for (bool failed = true; failed; ++failures) {
      ComponentInstance* instance = nullptr;
      const std::size_t before = allocationCount();
      {
        const FailingAllocations failing(failures);
        instance = create();
      }
      failed = allocationCount() - before > failures;
      EXPECT_EQ(instance == nullptr, failed) << component << " " << failures;
      remover(component)(instance);
    }
    EXPECT_GT(failures, 1U) << component;
  }
}

#if EMBEDDED_FRAMEWORK

using quenlith::build::markup::SnippetParser;
using quenlith::build::markup::services::ParserServicesProvider;
using quenlith::shared::appendix::AppendixBuilder;
using quenlith::shared::appendix::MarkerAppendix;

class EmptyProvider final : public ParserServicesProvider {
 public:
  std::vector<std::shared_ptr<quenlith::build::markup::contributordata::LineContributorDataParser>>
  getLineContributorDataParsers() override {
    return {};
  }
  std::vector<std::shared_ptr<quenlith::build::markup::code::CodeElementParser>>
  getCodeElementParsers() override {
    return {nullptr};
  }
};

/// Gives the services of the references, and calls a function in one of the calls.
class FaultyContext final : public cppmicroservices::service::component::ComponentContext {
 public:
  FaultyContext(std::size_t faultyCall, std::function<void()> fault)
      : faultyCall(faultyCall), fault(std::move(fault)) {}

  bool isReleased() const { return provider.use_count() == 1 && appendix.use_count() == 1; }

  mutable std::vector<std::string> names;

 protected:
  std::shared_ptr<void> LocateService(const std::string& name,
                                      const std::string& interfaceId) const override {
    names.push_back(name);
    if (names.size() - 1 == faultyCall) fault();
    if (interfaceId == us_service_interface_iid<AppendixBuilder>()) return appendix;
    return provider;
  }

 private:
  std::size_t faultyCall;
  std::function<void()> fault;
  std::shared_ptr<ParserServicesProvider> provider = std::make_shared<EmptyProvider>();
  std::shared_ptr<AppendixBuilder> appendix = std::make_shared<MarkerAppendix>();
};

// The calls of a context that becomes invalid, of one that fails in another way, and without
// memory.
const std::vector<std::function<void()>> kFaults = {
    [] { throw std::runtime_error("The bundle context is no longer valid"); }, [] { throw 7; },
    [] { throw std::bad_alloc(); }};

class ComponentFaults : public Factories {
 protected:
  /// The names of the references of `component`, in order.
  struct Component {
    std::string component;
    std::vector<std::string> names;
  };

  void failToMake(const Component& made, std::size_t faultyCall,
                  const std::function<void()>& fault) {
    ComponentInstance* const instance = creator(made.component)();
    const auto context = std::make_shared<FaultyContext>(faultyCall, fault);
    EXPECT_ANY_THROW(instance->CreateInstance(context));
    EXPECT_EQ(context->names.back(), made.names[faultyCall]);
    EXPECT_TRUE(context->isReleased());
    makeNow(made, *instance);
    remover(made.component)(instance);
  }

 private:
  static void makeNow(const Component& made, ComponentInstance& instance) {
    const auto context = std::make_shared<FaultyContext>(made.names.size(), nullptr);
    instance.CreateInstance(context);
    EXPECT_EQ(context->names, made.names);
    EXPECT_FALSE(context->isReleased());
    EXPECT_NE(cppmicroservices::ExtractInterface<SnippetParser>(instance.GetInterfaceMap()),
              nullptr);
    instance.Deactivate();
    EXPECT_TRUE(context->isReleased());
  }
};

TEST_F(ComponentFaults, NoParserIsMadeWithoutOneOfItsServices) {
  ASSERT_NE(library, nullptr) << dlerror();
  const std::vector<Component> parsers = {
      {"quenlith_build_markup_code_CodeSnippetParserImpl", {"parserServicesProvider"}},
      {"quenlith_build_markup_code_TaskSnippetParserImpl",
       {"appendixBuilder", "parserServicesProvider"}}};
  for (const Component& parser : parsers) {
    for (std::size_t faultyCall = 0; faultyCall < parser.names.size(); ++faultyCall) {
      for (const auto& fault : kFaults) {
        // What the framework keeps after the first use stays.
        failToMake(parser, faultyCall, fault);
        const std::ptrdiff_t before = liveAllocations();
        failToMake(parser, faultyCall, fault);
        EXPECT_EQ(liveAllocations(), before);
      }
    }
  }
}

#endif

TEST_F(Factories, ContextSlotTakesAnyHandle) {
  ASSERT_NE(library, nullptr) << dlerror();
  const auto set = symbol<void (*)(cppmicroservices::BundleContextPrivate*)>(
      std::string("_us_set_bundle_context_instance_") + kSymbolicName);
  ASSERT_NE(set, nullptr);
  set(reinterpret_cast<cppmicroservices::BundleContextPrivate*>(&library));
  set(nullptr);
}

}  // namespace
